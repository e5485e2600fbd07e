#pragma once

#include <atomic>

#include "orvwebpage/OrvSiteSize.h"
#include "size/OrvSitemapSize.h"
#include "size/OrvSizeCrawl.h"

class OrvSiteSizeImpl {
 public:
  void Measure(const char* url, long length, int64_t maxRequests);
  void Combine();
  void CheckSitemap();
  void RunExact(const char* url, long length, int64_t until);

  std::atomic<bool> stopped{false};
  OrvSitemapSize sitemaps;
  OrvSizeCrawl crawl;
  double pages = 0, low = 0, high = 0;
  ORV_SIZE_SOURCE source = ORV_SIZE_NONE;
  OrvString reason;
  bool sitemapTrusted = false;
  int32_t sitemapChecked = 0, sitemapCheckedGood = 0;
  int64_t exactPages = 0;
  bool exactWrapped = false;
  int64_t requests = 0, sitemapRequests = 0, crawlRequests = 0, exactRequests = 0;
};
