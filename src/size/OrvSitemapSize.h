#pragma once

#include <cstdint>
#include <vector>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvString.h"
#include "size/OrvSiteScope.h"

// One sitemap read or tried.
struct OrvSitemapFile {
  OrvString url;
  int64_t pages = 0;     // on-site page URLs it listed that no file read before it listed
  int64_t listed = 0;    // on-site page URLs it listed, repeats included
  int32_t children = 0;  // sitemaps it named, for an index
  int32_t sampled = 0;   // 1 when it was read as part of a sample of its index
  int32_t isIndex = 0;   // 1 for a sitemap index
  int32_t parent = -1;   // the index that named it, -1 for a top-level one
  int32_t answered = 0;  // 1 when the server said what it holds (a sitemap, or an HTTP error)
  OrvString problem;     // empty when read whole, else why not or what was cut
};

// Limits of one read; the defaults suit a run of about 60 requests.
struct OrvSitemapLimits {
  int32_t maxChildrenPerIndex = 24;       // past this an index is sampled
  int32_t maxUrlsPerFile = 50000;         // the sitemaps protocol's limit
  int64_t maxInflatedBytes = 50ll << 20;  // likewise
  int32_t maxDistinctUrls = 1 << 20;      // remembered; past it new URLs count as distinct
  int32_t sampleUrls = 64;                // listed on-site URLs kept for a check
  int32_t maxRobotsSitemaps = 50;         // Sitemap lines of robots.txt taken
};

struct OrvSitemapState;

// The page count a site's sitemaps give. Every request goes through OrvHttp,
// inside the limits of the run bound to the calling thread.
class OrvSitemapSize {
 public:
  OrvSitemapSize();
  ~OrvSitemapSize();
  OrvSitemapSize(const OrvSitemapSize&) = delete;
  OrvSitemapSize& operator=(const OrvSitemapSize&) = delete;

  void SetLimits(const OrvSitemapLimits& limits);

  // Reads the sitemaps of the site of entryUrl: the Sitemap lines of its
  // robots.txt and the hints (sitemaps a page links with rel="sitemap",
  // absolute URLs or paths from the root, resolved by the caller); when
  // none of them is a sitemap, /sitemap.xml, /sitemap_index.xml and
  // /wp-sitemap.xml in turn until one is. Makes at most maxFetches OrvHttp
  // calls. Replaces what an earlier Read found.
  void Read(const char* entryUrl, long len, const OrvStrArray& hints, int32_t maxFetches);

  // Distinct on-site page URLs, extrapolated over the unread children of
  // sampled indexes, and the range the sample allows; 0, 0, 0 when no sitemap
  // was found. A site read whole gives Low() == Pages() == High().
  int64_t Pages() const;
  int64_t Low() const;
  int64_t High() const;
  // 1 when at least one file read as a sitemap (even an empty one).
  int Found() const;

  int32_t FileCount() const;
  const OrvSitemapFile& File(int32_t i) const;  // out of range: an empty record

  // Fetches made (robots.txt once, when this read sent it), and the requests
  // sent (redirect hops included).
  int32_t Fetches() const;
  int32_t Requests() const;

  // A sample of the on-site page URLs listed, spread through all the files
  // read and the same from run to run (at most OrvSitemapLimits::sampleUrls),
  // for a crawl to check the sitemap against the site.
  const OrvStrArray& SampleUrls() const;

 private:
  OrvOwnedObject<OrvSitemapState> state;
};
