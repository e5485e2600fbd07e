#pragma once

#include <cstdint>

#include "core/OrvBlockPool.h"
#include "core/OrvTextArena.h"
#include "links/OrvLinkKeys.h"
#include "links/OrvWebPageLink.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"

// Every link of a page. A link is parsed once, as it arrives, into reused
// scratch fields; only its texts and the ids of its level keys are kept.
class OrvLinkRecords {
 public:
  OrvLinkKeys levels[4];  // level 0 holds hosts, the others keys
  uint32_t stamp = 0;     // of the node split under way

  OrvLinkRecords() = default;
  OrvLinkRecords(const OrvLinkRecords&) = delete;
  OrvLinkRecords& operator=(const OrvLinkRecords&) = delete;

  OrvWebPageLink* Add(const OrvString& url, const OrvString& label, void* userData,
                      const OrvUrlFilterExtractor& extractor);
  // A stamp no key of any level carries yet.
  uint32_t NextStamp();
  void Clear();

 private:
  OrvBlockPool<OrvWebPageLink> pool;
  OrvTextArena texts;
  OrvWebPageUrl parsed;
  OrvString label;
  OrvString key;
};
