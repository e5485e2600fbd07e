#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

class OrvWebPageCountEstimateImpl;

// What the first page of a shape turned out to be.
enum ORV_PAGE_STATE : int32_t {
  ORV_PAGE_UNREAD = 0,   // its fetch or parse failed: the shape counts 0
  ORV_PAGE_CONTENT = 1,  // long text at some depth; its links were not followed
  ORV_PAGE_LISTING = 2,  // heads a paged listing; later sightings are not counted
  ORV_PAGE_PLAIN = 3,    // anything else; links followed, sightings counted
};

// One shape of a run: a set of query parameter names, and the one page that
// was fetched for it.
struct OrvEstimateShape {
  OrvString key;   // the parameter names in sorted order, or "[No Query String]"
  OrvString url;   // the first URL of the shape the crawl met, the one fetched
  int read;        // 1 when that page was fetched and parsed
  int kind;        // an ORV_PAGE_STATE
  long estimate;   // pages that first page stands for
  long sightings;  // URLs of the shape met (a listing stays at 1)
  int listing;     // its number for FetchListing, or -1 when no pager was recognised
};

// What one probe of a listing's last-page search came back with.
enum ORV_PROBE_OUTCOME : int32_t {
  ORV_PROBE_PAGER = 0,      // a pager of rising page numbers, up to lastNumber
  ORV_PROBE_NO_PAGER = 1,   // a page, but no rising page numbers on it
  ORV_PROBE_UNPARSED = 2,   // a response that could not be parsed
  ORV_PROBE_UNFETCHED = 3,  // no 2xx response; httpStatus tells which, 0 for none at all
};

struct OrvEstimateProbe {
  long page;        // the page number tried
  int outcome;      // an ORV_PROBE_OUTCOME
  long httpStatus;  // status code of the final response, 0 when none came
  long lastNumber;  // the last number of the pager read; -1 unless ORV_PROBE_PAGER
};

// A page whose pager gave a page parameter, and the search for its last page.
// The page's estimate is lastPage times urlCount when lastPage is above 0.
struct OrvEstimateListing {
  int shape;            // number for FetchShape of the shape the page heads
  OrvString pageParam;  // name of the query parameter that carries the page number
  long step;            // change of its value from one page to the next
  long offset;          // its value on page 1
  int probeCount;       // probes made, read with FetchProbe
  long lastPage;        // the last page found, -1 when none was
  long urlCount;        // distinct crawlable URLs on the page itself
};

// What EstimateCount is busy with.
enum ORV_ESTIMATE_PHASE : int32_t {
  ORV_ESTIMATE_IDLE = 0,
  ORV_ESTIMATE_CRAWLING = 1,  // fetching one page per shape
  ORV_ESTIMATE_PROBING = 2,   // probing page numbers of a listing
};

// Estimates how many pages a web site holds by crawling it over HTTP from an
// entry URL. Only one page is fetched per set of query parameter names; the
// other URLs of that set are counted. A page that heads a paged listing
// counts as its number of pages times the distinct links it shows.
//
// EstimateCount blocks on the caller's thread until the crawl is done and
// gives 0 when nothing could be read. StopEstimating may be called from
// another thread: it cuts short the walk and the page-number probing of the
// page in hand, and the crawl then goes on with the URLs already queued.
//
// After EstimateCount returns, what the estimate is made of can be read: its
// shapes, and the listings among them with their probes. That record holds
// the last run only; the next EstimateCount replaces it. Reading calls give
// 1, or 0 for a number out of range, and then leave their output untouched.
//
// Copies and assignments share one estimator (counted); the last one to go
// destroys it. One EstimateCount at a time per shared estimator.
class ORV_API OrvWebPageCountEstimate {
 public:
  OrvWebPageCountEstimate();
  OrvWebPageCountEstimate(const OrvWebPageCountEstimate& other);
  ~OrvWebPageCountEstimate();
  OrvWebPageCountEstimate& operator=(const OrvWebPageCountEstimate& other);

  // length -1 (or any negative length): url is NUL-terminated.
  long EstimateCount(char* url, long length);
  void StopEstimating();
  // Safe from any thread, for a progress display; ORV_ESTIMATE_IDLE between runs.
  int GetPhase();

  // The shapes of the last run, in the order its sum runs over: the sum of
  // estimate times sightings, wrapping at 32 bits, is what it returned.
  int GetShapeCount();
  int FetchShape(int index, OrvEstimateShape& shape);
  // The listings of the last run, in the order their pages were read.
  int GetListingCount();
  int FetchListing(int index, OrvEstimateListing& listing);
  // The probes of one listing, in the order they were made.
  int FetchProbe(int listing, int index, OrvEstimateProbe& probe);

 private:
  OrvWebPageCountEstimateImpl* estimator;
};
