#include "estimate/OrvLinkTexts.h"

#include "core/OrvMemory.h"
#include "estimate/OrvKeyedList.h"

namespace {

uint32_t Keep(OrvString& bytes, const char* text, int32_t length) {
  uint32_t offset = uint32_t(bytes.len);
  if (length > 0) bytes.Append(text, length);
  return offset;
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
  uint32_t keyOffset = Keep(bytes, key, keyLength);
  uint32_t textOffset = Keep(bytes, text, textLength);
  held.Add(Held{keyOffset, keyLength, textOffset, textLength});
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
  FreeList(held);
  FreeList(texts);
  bytes = OrvString();
}
