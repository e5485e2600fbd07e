#include "estimate/OrvLinkTexts.h"

#include "core/OrvMemory.h"
#include "estimate/OrvKeyedList.h"

namespace {

void KeepLength(OrvString& bytes, int32_t length) {
  uint32_t n = uint32_t(length);
  char groups[5];
  int32_t count = 0;
  do {
    groups[count++] = char((n & 127u) | (n > 127u ? 128u : 0u));
    n >>= 7;
  } while (n);
  bytes.Append(groups, count);
}

uint32_t ReadLength(const char* bytes, uint32_t& offset) {
  uint32_t n = 0;
  for (int shift = 0;; shift += 7) {
    uint8_t group = uint8_t(bytes[offset++]);
    n |= uint32_t(group & 127u) << shift;
    if (group < 128u) return n;
  }
}

template <class T>
void FreeList(OrvList<T>& list) {
  OrvFreeBytes(list.items);
  list.items = nullptr;
  list.count = list.capacity = 0;
}

}  // namespace

void OrvLinkTexts::Hold(const char* key, int32_t keyLength, const char* text, int32_t textLength) {
  keyLength = keyLength > 0 ? keyLength : 0;
  textLength = textLength > 0 ? textLength : 0;
  KeepLength(bytes, keyLength);
  bytes.Append(key, keyLength);
  KeepLength(bytes, textLength);
  bytes.Append(text, textLength);
  heldEnd = bytes.len;
}

bool OrvLinkTexts::Next(uint32_t& offset, const char*& key, int32_t& keyLength,
                        uint32_t& textOffset, int32_t& textLength) const {
  if (offset >= uint32_t(heldEnd)) return false;
  keyLength = int32_t(ReadLength(bytes.buf, offset));
  key = bytes.buf + offset;
  offset += uint32_t(keyLength);
  textLength = int32_t(ReadLength(bytes.buf, offset));
  textOffset = offset;
  offset += uint32_t(textLength);
  return true;
}

void OrvLinkTexts::Add(const char* key, int32_t keyLength, uint32_t offset, int32_t length) {
  int32_t at = texts.count;
  texts.Add(Text{offset, length, -1});
  int found = 0;
  Chain* chain = chains.Insert(key, keyLength, &found);
  if (!found) {
    *chain = Chain{at, at, 1};
    return;
  }
  texts.items[chain->last].next = at;
  chain->last = at;
  chain->count++;
}

void OrvLinkTexts::Reset() {
  OrvClearIfUsed(chains);
  FreeList(texts);
  bytes = OrvString();
  heldEnd = 0;
}
