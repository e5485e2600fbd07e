#pragma once

// The crawl of the site size: a breadth-first walk from the entry that reads
// pages of every URL shape in turn, finds the listings by their pagers,
// probes each kind of listing for its last page, counts the items a listing
// page holds, and sizes the shapes without a pager by how often the same
// URLs recur from page to page. Every request goes through OrvHttp, so the
// run's HTTP limits bound it; maxRequests bounds it further.

#include <atomic>

#include "size/OrvRecapture.h"
#include "size/OrvSizePager.h"

struct OrvSizeProbeRecord {
  int64_t page = 0;
  bool good = false;  // a page of the listing, not past its end
  long status = 0;    // HTTP status, 0 when none came
};

// One kind of listing (the home page's, the categories', ...): the one of
// them that was probed, and what the kind adds up to.
struct OrvSizeListingRecord {
  OrvSizeText firstUrl;   // page 1 of the probed listing
  OrvSizeText pattern;    // its other pages, "{}" for the number
  OrvSizeText family;     // shape of its page 1: the listings of this kind
  OrvSizeText itemShape;  // the shape of the links its pages list, first directory loose
  OrvSizeList<OrvSizeText> itemShapes;  // the shapes met that it stands for
  int64_t step = 1, offset = 1;
  int64_t shownLast = 0;  // highest page its first pages link
  int64_t lastPage = 0, lastLow = 0, lastHigh = 0;
  double itemsPerPage = 0;
  int64_t members = 1;                                              // listings of this kind
  double extraPages = 0, extraLow = 0, extraHigh = 0;               // their pages past page 1
  double items = 0, itemsLow = 0, itemsHigh = 0;                    // items they list, each once
  double memberExtra = 0, memberExtraLow = 0, memberExtraHigh = 0;  // per listing of the kind
  double memberItems = 0;
  OrvSizeList<int32_t> deepPages;  // its pages past the first that were read
  OrvSizeList<OrvSizeProbeRecord> probes;
};

struct OrvSizeShapeRecord {
  OrvSizeText key;
  int64_t seen = 0;  // distinct URLs of it met, pager pages aside
  int64_t fetched = 0;
  double estimate = 0, low = 0, high = 0;
  const char* how = "seen";  // "seen", "recapture" or "listing items"
};

class OrvSizeCrawl {
 public:
  // Crawls from entry (len -1: NUL-terminated), making at most maxRequests
  // requests (redirects included).
  void Run(const char* entry, long len, int64_t maxRequests);

  double Pages() const { return pages; }
  double Low() const { return low; }
  double High() const { return high; }
  int64_t Requests() const { return requests; }
  int64_t PagesRead() const { return pagesRead; }
  int64_t UrlsSeen() const { return int64_t(urls.size()); }
  const OrvSizeList<OrvSizeListingRecord>& Listings() const { return listings; }
  const OrvSizeList<OrvSizeShapeRecord>& Shapes() const { return shapes; }
  // Local parts of the on-site URLs met, for checking a sitemap against.
  bool Saw(std::string_view local) const { return index.count(OrvSizeText(local)) != 0; }
  // Whether local is a page of a listing past its first.
  bool IsPagerPage(std::string_view local) const;
  // From another thread: no further request.
  void Stop() { stopped = true; }

 private:
  struct UrlRecord {
    OrvSizeText local;
    int32_t shape = 0;
    int32_t pagesSeen = 0;
    int32_t lastPage = -1;    // the last page it was seen on, so each page counts once
    int8_t state = 0;         // 0 not fetched, 1 a page, 2 failed or not a page
    int32_t pagerCheck = -1;  // pagerVersion when pagerPage was found
    bool pagerPage = false;
  };
  struct PageRecord {
    int32_t url = -1;
    OrvSizeList<int32_t> links;  // distinct on-site URLs it links
    bool hasPager = false;
    OrvSizePager pager;
    bool probe = false;
  };
  struct ShapeRecord {
    OrvSizeText key;
    OrvSizeList<int32_t> urls;
    int32_t fetched = 0;
  };

  bool Spent() const;
  int32_t AddUrl(const OrvSizeText& local);
  // Fetches a URL and records its page; the page's number, or -1.
  int32_t Fetch(int32_t url, bool probe, long* status);
  int32_t NextToExplore() const;
  void Explore(int64_t untilRequests);
  bool ListsItems(const PageRecord& page) const;
  void FindListings();
  void ProbeListing(OrvSizeListingRecord& listing, int64_t untilRequests);
  bool IsGoodProbe(const OrvSizeListingRecord& listing, int32_t page, int64_t number) const;
  void CountItems(OrvSizeListingRecord& listing);
  void CountFamily(OrvSizeListingRecord& listing);
  void Recapture(OrvSizeList<OrvRecapture>& out) const;
  // IsPagerPage of a URL of the table, remembered until the pagers change.
  bool IsPagerUrl(int32_t url) const;
  void Sum();

  OrvSizeText entryUrl;  // as given
  OrvSizeText origin;    // scheme and authority of the entry
  mutable OrvSizeList<UrlRecord> urls;
  OrvSizeTextMap<int32_t> index;
  OrvSizeList<ShapeRecord> shapeTable;
  OrvSizeTextMap<int32_t> shapeIndex;
  OrvSizeList<PageRecord> pageTable;
  OrvSizeList<OrvSizeListingRecord> listings;
  OrvSizeList<OrvSizeShapeRecord> shapes;
  int32_t pagerVersion = 0;  // grows whenever the pagers known change
  int64_t firstRequest = 0, maxRequests = 0, requests = 0, pagesRead = 0;
  double pages = 0, low = 0, high = 0;
  std::atomic<bool> stopped{false};
};
