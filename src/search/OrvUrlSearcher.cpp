#include "search/OrvUrlSearcher.h"

#include <cstring>

void OrvUrlSearcher::SetEntryUrl(const OrvString& url) {
  entryUrl.url = url;
  entryUrl.Parse(0);
  extractor.SetEntryHost(entryUrl.host);
}

void OrvUrlSearcher::AddUrl(const OrvString& url) {
  OrvWebPageUrl** slot = urls.AddSlot();
  OrvWebPageUrl* record = urlPool.Alloc();
  *slot = record;
  // A record from a rewound pool holds old text; Parse rewrites every field.
  record->url = url;
  record->Parse(0);
}

void OrvUrlSearcher::ComposeKey(const OrvWebPageUrl& record, OrvString& key) const {
  // Level 0 replaces whatever key held, as every extractor does.
  extractor.Extract(0, key, record);
  for (uint8_t level = 1; level <= 3; level++) {
    extractor.Extract(level, scratch, record);
    if (scratch.len > 0) key += scratch;
  }
}

void OrvUrlSearcher::SearchUrls(const OrvString& url, OrvString& key) {
  // Parse a copy first: url and key may be one string.
  OrvWebPageUrl example;
  example.url = url;
  example.Parse(0);
  ComposeKey(example, key);

  const int32_t count = urls.count;
  OrvString work;
  for (int32_t i = 0; i < count; i++)
    if (HasKey(*urls.items[i], key, work)) foundUrls.Add(urls.items[i]);
}

bool OrvUrlSearcher::HasKey(const OrvWebPageUrl& record, const OrvString& key,
                            OrvString& work) const {
  // A composed key is its non-empty level keys back to back, so it equals key
  // exactly when each of them matches key where the previous one ended and
  // together they use all of key. Most stored URLs fail at the host or path.
  int32_t at = 0;
  for (uint8_t level = 0; level < 4; level++) {
    extractor.Extract(level, work, record);
    if (work.len <= 0) continue;
    if (work.len > key.len - at || std::memcmp(key.buf + at, work.buf, size_t(work.len)) != 0)
      return false;
    at += work.len;
  }
  return at == key.len;
}

void OrvUrlSearcher::GetFoundUrl(unsigned int index, OrvString& url) const {
  if (index < unsigned(foundUrls.count)) url = foundUrls.items[index]->url;
}

void OrvUrlSearcher::ClearUrls() {
  foundUrls.count = 0;
  urls.count = 0;
  // The records keep their string storage for the next AddUrl.
  urlPool.Rewind();
}
