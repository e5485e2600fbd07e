#pragma once

#include <atomic>
#include <cstdint>

#include "core/OrvBlockPool.h"
#include "core/OrvShared.h"
#include "core/OrvStrMap.h"
#include "estimate/OrvPageHarvest.h"
#include "estimate/OrvPageTemplate.h"
#include "orvwebpage/OrvString.h"

// The estimator behind the exported facade: its harvest of the page in hand,
// the text statistics of that page, and the distinct URLs to follow.
class OrvWebPageCountEstimateImpl : public OrvPageHarvest, public OrvShared {
 public:
  OrvKeyedList<OrvTextNode> textNodes;  // visible text outside links, by depth
  OrvStrMap<int32_t> textSums;          // non-blank bytes of that text, by depth
  OrvString textKey;
  int32_t pageEstimate = 0;
  OrvStrMap<OrvString*> pageUrls;  // URL text to its parameter-name key
  OrvBlockPool<OrvString> keyStrings;
  // Cleared by StopEstimating from any thread; relaxed is enough, the flag
  // orders nothing else.
  std::atomic<uint8_t> running{1};
  // Facades sharing this object.

  // Crawls from the URL and sums estimate times sightings over the shapes.
  long EstimateCount(const char* url, long length);
  void StopEstimating() { running.store(0, std::memory_order_relaxed); }
  bool IsRunning() const { return running.load(std::memory_order_relaxed) != 0; }

  void SetEntryUrl(OrvString& text) { SetEntry(text); }
  // Runs, text pruning, pageUrls and, for a listing, the last-page search.
  void AnalysePage();
  // Number of pages of the listing the template describes, or -1.
  int32_t FindLastPage(const OrvPageTemplate& pageTemplate);
  // Forgets everything the last page produced except keyStrings.
  void ResetPage();

  // Steps of AnalysePage.
  void PruneTextDepths();
  void CollectPageUrls();
};
