#pragma once

#include "orvwebpage/OrvExport.h"

class OrvWebPageCountEstimateImpl;

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

 private:
  OrvWebPageCountEstimateImpl* estimator;
};
