// The estimator's work on one page. Input: the whole of it is the page, read
// as the crawl reads it, under a fixed entry URL. The run's deadline is spent
// before the first input, so every probe of the last-page search fails at once
// and nothing leaves the process.

#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvHttpLimits.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  OrvHttpSettings settings;
  settings.deadlineMs = 1;
  OrvHttpLimits::Set(settings);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!OrvHttpLimits::IsSpent()) __builtin_trap();  // a probe must never reach the network
  std::vector<char> page(data, data + size);
  OrvHtml document;
  if (document.Open(page.data(), long(page.size()), ORV_CHARSET_BYTES) != 0) return 0;
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/list/index.html?page=1", -1);
  estimator.SetEntryUrl(entry);
  // Twice, as the crawl does with one estimator over its pages.
  volatile int32_t sink = 0;
  for (int round = 0; round < 2; round++) {
    OrvHarvestWalk walk;
    walk.go = 1;
    walk.harvest = &estimator;
    walk.HarvestPage(document.root, 1);
    estimator.AnalysePage();
    sink = sink + estimator.pageEstimate + int32_t(estimator.pageUrls.count);
    estimator.ResetPage();
  }
  return 0;
}
