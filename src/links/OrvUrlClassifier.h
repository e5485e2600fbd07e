#pragma once

#include <cstdint>

#include "core/OrvPtrList.h"
#include "core/OrvShared.h"
#include "links/OrvUrlClassStore.h"
#include "links/OrvWebPageLink.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"

// A list of links and its split by one URL level. The facade holds one that
// lasts, with all links in the order they were added; classification makes a
// short-lived one for each node of the class tree. The shared objects belong
// to the facade.
class OrvUrlClassifier : public OrvShared {
 public:
  OrvLinkList links;
  OrvUrlClassStore groups;
  OrvUrlFilterExtractor* extractor;
  OrvByteList* enabledExtractors;
  OrvUrlClassStore* results;

  OrvUrlClassifier(OrvUrlFilterExtractor* filters, OrvByteList* enabled, OrvUrlClassStore* store)
      : extractor(filters), enabledExtractors(enabled), results(store) {}
  OrvUrlClassifier(const OrvUrlClassifier&) = delete;
  OrvUrlClassifier& operator=(const OrvUrlClassifier&) = delete;
  ~OrvUrlClassifier() { ClearGroups(); }

  void AddLink(const OrvString& url, const OrvString& label, void* userData);
  // Splits nodeLinks by level and below, and files each leaf into results
  // under its class key. The depth is fixed at four levels.
  void Classify(const OrvString& key, const OrvLinkList& nodeLinks, uint8_t level);
  void SplitLevel(uint8_t level);
  // The group of that key text in this node, made on first use.
  OrvLinkList* Group(const char* key, int32_t len);
  void ClearGroups();

  static constexpr uint8_t levelCount = 4;
};
