#include "links/OrvLinkRecords.h"

OrvWebPageLink* OrvLinkRecords::Add(const OrvString& url, const OrvString& labelText,
                                    void* userData, const OrvUrlFilterExtractor& extractor) {
  OrvWebPageLink* link = pool.Alloc();
  parsed.url = url;
  parsed.Parse(1);
  label = labelText;
  link->userData = userData;
  link->url = texts.Copy(parsed.url.buf, size_t(parsed.url.len));
  link->urlLen = parsed.url.len;
  link->label = texts.Copy(label.buf, size_t(label.len));
  link->labelLen = label.len;
  link->keyIds[0] = levels[0].Id(parsed.host.buf, parsed.host.len, texts);
  for (uint8_t level = 1; level < 4; level++) {
    extractor.Extract(level, key, parsed);
    link->keyIds[level] = levels[level].Id(key.buf, key.len, texts);
  }
  return link;
}

uint32_t OrvLinkRecords::NextStamp() {
  stamp++;
  if (stamp == 0) {
    for (OrvLinkKeys& keys : levels) keys.ForgetGroups();
    stamp = 1;
  }
  return stamp;
}

void OrvLinkRecords::Clear() {
  for (OrvLinkKeys& keys : levels) keys.Clear();
  pool.FreeBlocks();
  texts.FreeAll();
}
