#include "estimate/OrvPageHarvest.h"

#include <cstring>

#include "orvwebpage/OrvUrlFilterExtractor.h"

OrvPageHarvest::OrvPageHarvest() {
  extensions.AddString("html", -1);
  extensions.AddString("htm", -1);
  extensions.AddString("asp", -1);
  extensions.AddString("jsp", -1);
  extensions.AddString("action", -1);
}

void OrvPageHarvest::SetEntry(const OrvString& text) {
  entryUrl.url = text;
  entryUrl.Parse(1);
  OrvUrlFilterExtractor::HostTail(siteDomain, entryUrl.host.buf, entryUrl.host.len);
}

void OrvPageHarvest::CompleteUrl(OrvWebPageUrl& url) {
  bool copied = false;
  if (url.scheme.len < 1) {
    url.scheme = entryUrl.scheme;
    copied = true;
  }
  if (url.host.len < 1) {
    url.host = entryUrl.host;
    copied = true;
  }
  if (copied) url.Rebuild();
}

namespace {

// Length of the key, the key, then the URL text: no two pairs give one text.
void MakeListedKey(OrvString& out, const OrvString& key, const char* url, int32_t urlLen) {
  uint32_t keyLen = key.len > 0 ? uint32_t(key.len) : 0;
  char prefix[4] = {char(keyLen), char(keyLen >> 8), char(keyLen >> 16), char(keyLen >> 24)};
  out.CopyBuf(prefix, 4);
  out.Append(key.buf, keyLen);
  out.Append(url, urlLen);
}

}  // namespace

bool OrvPageHarvest::AddLink(const OrvLinkRecord& link) {
  const char* url = link.url.buf;
  int32_t upToNul = url ? int32_t(Orvstrlen(url)) : 0;
  const char* key = scratchKey.buf ? scratchKey.buf : "";
  int32_t keyLen = scratchKey.buf ? scratchKey.len : 0;
  OrvPtrList** slot = links.map.Find(key, keyLen);
  int32_t listed = slot ? (*slot)->count : 0;
  // A link is refused when its text up to its first NUL equals the whole
  // text of one listed under the key. Short lists are searched; from
  // kSearchedLinks on, the texts of a key go into listedUrls.
  if (listed < kSearchedLinks) {
    for (int32_t i = 0; i < listed; i++) {
      const OrvString& text = links.At(*slot, i)->url;
      if (text.len == upToNul && (upToNul == 0 || std::memcmp(text.buf, url, size_t(upToNul)) == 0))
        return false;
    }
  } else {
    MakeListedKey(listedKey, scratchKey, url, upToNul);
    if (listedUrls.Find(listedKey.buf, listedKey.len)) return false;
  }
  OrvLinkRecord* record = links.records.Alloc();
  record->url.CopyBuf(url, link.url.len);
  record->item = link.item;
  record->depth = link.depth;
  links.Add(key, keyLen, record);
  if (listed + 1 < kSearchedLinks) return true;
  OrvPtrList* list = *links.map.Find(key, keyLen);
  for (int32_t i = listed + 1 == kSearchedLinks ? 0 : list->count - 1; i < list->count; i++) {
    const OrvString& text = links.At(list, i)->url;
    MakeListedKey(listedKey, scratchKey, text.buf, text.len);
    listedUrls.Insert(listedKey.buf, listedKey.len);
  }
  return true;
}

void OrvPageHarvest::ResetLinks() {
  OrvReleaseIfUsed(listedUrls);
  links.Reset();
  ResetNumbers();
}

void OrvPageHarvest::ResetNumbers() {
  OrvReleaseIfUsed(numberTails);
  spareNumbers.count = 0;  // they lie in the pool's blocks
  numbers.Reset();
  runs.Reset();
}

void OrvCopyTarget(OrvWebPageUrl& url, const var_attr* target) {
  const char* value = target->value;
  url.url.CopyBuf(value, value ? MeasuredLen(value, target->value_len) : 0);
}

bool OrvIsNumberText(const char* text, long length) {
  for (long i = 0; i < length; i++) {
    char c = text[i];
    if (!((c >= '0' && c <= '9') || c == ' ' || c == ',')) return false;
  }
  return true;
}

bool HasListedExtension(const OrvWebPageUrl& url, OrvStrArray& list) {
  for (int32_t i = 0; i < list.count; i++)
    if (url.ext.CapsIsEqual(list[i], list.GetStringLen(i))) return true;
  return false;
}

void OrvFormatDepth(OrvString& key, int32_t depth) {
  char digits[16];
  char* end = digits + sizeof digits;
  char* p = end;
  // Magnitude in unsigned arithmetic, so the lowest value has one too.
  uint32_t magnitude = depth < 0 ? 0u - uint32_t(depth) : uint32_t(depth);
  do {
    *--p = char('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude);
  if (depth < 0) *--p = '-';
  key.CopyBuf(p, long(end - p));
}
