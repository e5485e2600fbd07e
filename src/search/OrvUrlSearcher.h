#pragma once

#include <cstdint>

#include "core/OrvBlockPool.h"
#include "core/OrvGrowArray.h"
#include "core/OrvPtrList.h"
#include "core/OrvShared.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"

// The state behind OrvWebPageUrlsSearch. Stored records live in urlPool and
// are parsed once, on AddUrl; shape keys are worked out at each search, so
// the entry URL may come after the URLs. The members are destroyed in the
// reverse of this order: found list, pool, stored list, extractor, entry URL.
class OrvUrlSearcher : public OrvShared {
 public:
  OrvWebPageUrl entryUrl;
  OrvUrlFilterExtractor extractor;
  OrvGrowArray<OrvWebPageUrl*> urls;
  OrvBlockPool<OrvWebPageUrl> urlPool;
  OrvList<OrvWebPageUrl*> foundUrls;  // points into urlPool, owns nothing
  mutable OrvString scratch;          // a level key on its way into a composed key

  void SetEntryUrl(const OrvString& url);
  void AddUrl(const OrvString& url);
  int GetInCount() const { return urls.count; }
  void SearchUrls(const OrvString& url, OrvString& key);
  unsigned int GetFoundUrlsCount() const { return unsigned(foundUrls.count); }
  void GetFoundUrl(unsigned int index, OrvString& url) const;
  void ClearUrls();

  // The four level keys joined, level 0 always, the others when not empty.
  void ComposeKey(const OrvWebPageUrl& record, OrvString& key) const;

  // Whether ComposeKey of the record would equal key, deciding at the first
  // level that departs from it. work is scratch space kept across calls.
  bool HasKey(const OrvWebPageUrl& record, const OrvString& key, OrvString& work) const;
};
