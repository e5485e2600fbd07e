#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

// Where the figure of a site-size run came from.
enum ORV_SIZE_SOURCE : int32_t {
  ORV_SIZE_NONE = 0,     // nothing could be read
  ORV_SIZE_SITEMAP = 1,  // the site's sitemaps, with the listing pages they leave out
  ORV_SIZE_CRAWL = 2,    // the crawl: listings probed, other shapes by recapture
  ORV_SIZE_EXACT = 3,    // OrvWebPageCountEstimate, when neither of the others read anything
};

// A sitemap read or tried.
struct OrvSiteSizeSitemap {
  OrvString url;
  int64_t pages;      // on-site page URLs it added
  int32_t children;   // sitemaps it named, for an index
  int32_t sampled;    // 1 when read as part of a sample of its index
  OrvString problem;  // empty when read whole; else what could not be read
};

// One kind of listing the crawl found (the home page's, the categories'...)
// and the one of them it probed.
struct OrvSiteSizeListing {
  OrvString firstUrl;   // page 1 of the probed listing
  OrvString pattern;    // its other pages behind the host, "{}" for the number
  OrvString family;     // shape of page 1: the listings of this kind
  OrvString itemShape;  // shape of the links its pages list; empty when none stood out
  int64_t lastPage, lastLow, lastHigh;
  double itemsPerPage;
  int64_t members;     // listings of this kind
  int64_t extraPages;  // their pages past page 1
  int64_t items;       // items they list
  int32_t probeCount;
};

struct OrvSiteSizeProbe {
  int64_t page;
  int32_t good;  // 1 for a page of the listing, 0 past its end or failed
  long status;   // HTTP status, 0 when none came
};

// A URL shape of the crawl and what it counts for.
struct OrvSiteSizeShape {
  OrvString key;
  int64_t seen;  // distinct URLs met
  int64_t pages, low, high;
  OrvString how;  // "seen", "recapture" or "listing items"
};

class OrvSiteSizeImpl;

// How many pages a site holds, from three sources: its sitemaps, a crawl
// that reads path and root-query pagers, next-only pagers and listings of
// summaries, and the exact estimate of OrvWebPageCountEstimate. One figure
// with its source and a range, and each source's own figure beside it.
//
// Measure blocks on the caller's thread and makes at most maxRequests
// requests (redirects included; 0 or less: 60), every one through OrvHttp,
// so the HTTP limits in force bound it as well. Stop, from another thread,
// ends it soon with what was read. Nothing is thrown or printed. Reading
// calls describe the last run; Fetch* give 1, or 0 for an index out of range.
class ORV_API OrvSiteSize {
 public:
  OrvSiteSize();
  ~OrvSiteSize();
  OrvSiteSize(const OrvSiteSize&) = delete;
  OrvSiteSize& operator=(const OrvSiteSize&) = delete;

  int64_t Measure(const char* url, long length, int64_t maxRequests);
  void Stop();

  int64_t Pages() const;
  int64_t Low() const;
  int64_t High() const;
  ORV_SIZE_SOURCE Source() const;
  static const char* SourceName(ORV_SIZE_SOURCE source);  // "sitemap", "crawl", "exact", "none"
  // Why the source was chosen, in a few words.
  const OrvString& Reason() const;

  // Each source's own figure; 0 when it gave none.
  int64_t SitemapPages() const;
  int64_t SitemapLow() const;
  int64_t SitemapHigh() const;
  int SitemapTrusted() const;
  int64_t CrawlPages() const;
  int64_t CrawlLow() const;
  int64_t CrawlHigh() const;
  int64_t ExactPages() const;  // 64-bit sum of the exact estimate's shapes
  int ExactWrapped() const;    // 1 when the estimator's own 32-bit figure wrapped

  int64_t Requests() const;  // all of the run
  int64_t SitemapRequests() const;
  int64_t CrawlRequests() const;
  int64_t ExactRequests() const;
  int64_t CrawlPagesRead() const;

  int GetSitemapCount() const;
  int FetchSitemap(int index, OrvSiteSizeSitemap& sitemap) const;
  int GetListingCount() const;
  int FetchListing(int index, OrvSiteSizeListing& listing) const;
  int FetchProbe(int listing, int index, OrvSiteSizeProbe& probe) const;
  int GetShapeCount() const;
  int FetchShape(int index, OrvSiteSizeShape& shape) const;

 private:
  OrvSiteSizeImpl* impl;
};
