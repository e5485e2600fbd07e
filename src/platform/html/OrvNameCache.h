#pragma once

#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"
#include "platform/html/OrvDocArena.h"

// The parser hands out each distinct name as one interned pointer, so a name
// is numbered and copied into the document once, and every further element
// of that name costs a pointer probe and a short compare. The compare keeps
// the answer right for a name that did not come from the parser's table.
struct OrvCachedName {
  const char* key;
  char* copy;  // NUL-terminated, in the document's arena
  int32_t length;
  uint16_t number;
};

class OrvNameCache {
 public:
  typedef uint16_t (*Numbering)(const char* name);

  explicit OrvNameCache(Numbering number) : numbering(number) {}
  OrvNameCache(const OrvNameCache&) = delete;
  OrvNameCache& operator=(const OrvNameCache&) = delete;
  ~OrvNameCache() { OrvFreeBytes(slots); }

  const OrvCachedName& Get(const char* key, OrvDocArena& arena) {
    if (!slots) Grow();
    uint32_t i = Slot(key);
    while (slots[i].key) {
      if (slots[i].key == key && SameText(slots[i], key)) return slots[i];
      i = (i + 1) & mask;
    }
    if ((used + 1) * 2 > mask + 1) {
      Grow();
      i = Slot(key);
      while (slots[i].key) i = (i + 1) & mask;
    }
    size_t length = std::strlen(key);
    char* copy = static_cast<char*>(arena.Alloc(length + 1));
    std::memcpy(copy, key, length + 1);
    slots[i] = OrvCachedName{key, copy, static_cast<int32_t>(length), numbering(key)};
    used++;
    return slots[i];
  }

 private:
  // Names are short: a loop over the known length beats a call to strcmp.
  static bool SameText(const OrvCachedName& cached, const char* key) {
    for (int32_t k = 0; k <= cached.length; k++) {
      if (cached.copy[k] != key[k]) return false;
    }
    return true;
  }

  uint32_t Slot(const char* key) const {
    uint64_t h = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(key)) * 0x9E3779B97F4A7C15ull;
    return static_cast<uint32_t>(h >> 32) & mask;
  }

  void Grow() {
    OrvCachedName* old = slots;
    uint32_t oldCount = slots ? mask + 1 : 0;
    uint32_t count = oldCount ? oldCount * 2 : 256;
    slots = static_cast<OrvCachedName*>(OrvAllocBytes(count * sizeof(OrvCachedName)));
    std::memset(slots, 0, count * sizeof(OrvCachedName));
    mask = count - 1;
    for (uint32_t j = 0; j < oldCount; j++) {
      if (!old[j].key) continue;
      uint32_t i = Slot(old[j].key);
      while (slots[i].key) i = (i + 1) & mask;
      slots[i] = old[j];
    }
    OrvFreeBytes(old);
  }

  Numbering numbering;
  OrvCachedName* slots = nullptr;
  uint32_t mask = 0;
  uint32_t used = 0;
};
