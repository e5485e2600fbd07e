#include "estimate/OrvWebPageCountEstimateImpl.h"

void OrvWebPageCountEstimateImpl::ResetPage() {
  running.store(1, std::memory_order_relaxed);
  ResetLinks();
  textNodes.Reset();
  textSums.Clear();
  pageUrls.Clear();
}
