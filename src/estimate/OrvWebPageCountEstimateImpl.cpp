#include "estimate/OrvWebPageCountEstimateImpl.h"

void OrvWebPageCountEstimateImpl::ResetPage() {
  running.store(1, std::memory_order_relaxed);
  ResetLinks();
  textNodes.Reset();
  ClearIfUsed(textSums);
  ClearIfUsed(pageUrls);
}
