#pragma once

#include <atomic>
#include <cstdint>

#include "core/OrvBlockPool.h"
#include "core/OrvShared.h"
#include "core/OrvStrMap.h"
#include "estimate/OrvEstimateExplanation.h"
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
  int32_t pageListing = -1;        // the listing of the page just analysed in explanation, or -1
  OrvStrMap<OrvString*> pageUrls;  // URL text to its parameter-name key
  OrvBlockPool<OrvString> keyStrings;
  // Cleared by StopEstimating from any thread; relaxed is enough, the flag
  // orders nothing else.
  std::atomic<uint8_t> running{1};
  std::atomic<uint8_t> phase{ORV_ESTIMATE_IDLE};  // read by progress displays on any thread
  OrvEstimateExplanation explanation;             // of the last run
  // Facades sharing this object.

  // Crawls from the URL and sums estimate times sightings over the shapes.
  long EstimateCount(const char* url, long length);
  void StopEstimating() { running.store(0, std::memory_order_relaxed); }
  bool IsRunning() const { return running.load(std::memory_order_relaxed) != 0; }

  void SetEntryUrl(OrvString& text) { SetEntry(text); }
  // After DetectRuns: the template, text pruning, pageUrls and, for a
  // listing, the last-page search. Frees the links, numbers and runs.
  void AnalysePage();
  // Number of pages of the listing the template describes, or -1. Each probe
  // goes to the log's last listing, if a log is given.
  int32_t FindLastPage(const OrvPageTemplate& pageTemplate, OrvEstimateExplanation* log = nullptr);
  // Forgets everything the last page produced except keyStrings.
  void ResetPage();

  // Steps of AnalysePage.
  void PruneTextDepths();
  void CollectPageUrls();
  void CollectLinkTexts();  // CollectPageUrls with allLinks 0
};
