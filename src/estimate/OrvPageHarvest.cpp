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
void MakeListedKey(OrvString& out, const char* key, int32_t keyLength, const char* url,
                   int32_t urlLen) {
  uint32_t keyLen = keyLength > 0 ? uint32_t(keyLength) : 0;
  char prefix[4] = {char(keyLen), char(keyLen >> 8), char(keyLen >> 16), char(keyLen >> 24)};
  out.CopyBuf(prefix, 4);
  out.Append(key, keyLen);
  out.Append(url, urlLen);
}

// Calls visit(text, length) for each link listed under the key, in order,
// until it gives true; gives whether one did.
template <class Visit>
bool AnyListed(OrvPageHarvest& h, const char* key, int32_t keyLen, Visit visit) {
  if (h.allLinks) {
    OrvPtrList** slot = h.links.map.Find(key, keyLen);
    for (int32_t i = 0; slot && i < (*slot)->count; i++) {
      const OrvString& text = h.links.At(*slot, i)->url;
      if (visit(text.buf, text.len)) return true;
    }
    return false;
  }
  const OrvLinkTexts::Chain* chain = h.linkTexts.Find(key, keyLen);
  for (int32_t i = chain ? chain->first : -1; i >= 0;) {
    const OrvLinkTexts::Text& t = h.linkTexts.texts.items[i];
    if (visit(h.linkTexts.At(t.offset), t.length)) return true;
    i = t.next;
  }
  return false;
}

int32_t ListedCount(OrvPageHarvest& h, const char* key, int32_t keyLen) {
  if (h.allLinks) {
    OrvPtrList** slot = h.links.map.Find(key, keyLen);
    return slot ? (*slot)->count : 0;
  }
  const OrvLinkTexts::Chain* chain = h.linkTexts.Find(key, keyLen);
  return chain ? chain->count : 0;
}

}  // namespace

bool OrvPageHarvest::AddLink(const OrvLinkRecord& link) {
  const char* key = scratchKey.buf ? scratchKey.buf : "";
  int32_t keyLen = scratchKey.buf ? scratchKey.len : 0;
  if (!allLinks) {
    linkTexts.Hold(key, keyLen, link.url.buf, link.url.len);
    return true;
  }
  return ListLink(key, keyLen, link.url.buf, link.url.len, &link, 0);
}

void OrvPageHarvest::ListHeldLinks() {
  const char* key = nullptr;
  int32_t keyLength = 0, textLength = 0;
  uint32_t textOffset = 0;
  for (uint32_t at = 0; linkTexts.Next(at, key, keyLength, textOffset, textLength);)
    ListLink(key, keyLength, linkTexts.At(textOffset), textLength, nullptr, textOffset);
}

bool OrvPageHarvest::ListLink(const char* key, int32_t keyLen, const char* url, int32_t urlLen,
                              const OrvLinkRecord* link, uint32_t heldOffset) {
  const void* nul = url && urlLen > 0 ? std::memchr(url, 0, size_t(urlLen)) : nullptr;
  int32_t upToNul = nul ? int32_t(static_cast<const char*>(nul) - url) : url ? urlLen : 0;
  int32_t listed = ListedCount(*this, key, keyLen);
  // A link is refused when its text up to its first NUL equals the whole
  // text of one listed under the key. Short lists are searched; from
  // kSearchedLinks on, the texts of a key go into listedUrls.
  if (listed < kSearchedLinks) {
    bool same = AnyListed(*this, key, keyLen, [&](const char* text, int32_t length) {
      return length == upToNul && (upToNul == 0 || std::memcmp(text, url, size_t(upToNul)) == 0);
    });
    if (same) return false;
  } else {
    MakeListedKey(listedKey, key, keyLen, url, upToNul);
    if (listedUrls.Find(listedKey.buf, listedKey.len)) return false;
  }
  if (link) {
    OrvLinkRecord* record = links.records.Alloc();
    record->url.CopyBuf(url, urlLen);
    record->item = link->item;
    record->depth = link->depth;
    links.Add(key, keyLen, record);
  } else {
    linkTexts.Add(key, keyLen, heldOffset, urlLen);
  }
  if (listed + 1 < kSearchedLinks) return true;
  if (listed + 1 > kSearchedLinks) {
    MakeListedKey(listedKey, key, keyLen, url, urlLen);
    listedUrls.Insert(listedKey.buf, listedKey.len);
    return true;
  }
  AnyListed(*this, key, keyLen, [&](const char* text, int32_t length) {
    MakeListedKey(listedKey, key, keyLen, text, length);
    listedUrls.Insert(listedKey.buf, listedKey.len);
    return false;
  });
  return true;
}

void OrvPageHarvest::ResetLinks() {
  OrvReleaseIfUsed(listedUrls);
  links.Reset();
  linkTexts.Reset();
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
