#pragma once

#include <cstdint>

#include "core/OrvMemory.h"

// A set of texts kept as 64-bit hashes (8 bytes a text, two chances in 10^8
// of a false repeat among a million), holding at most maxCount of them: past
// that every text counts as new and Overflow() says how many did.
class OrvUrlHashSet {
 public:
  explicit OrvUrlHashSet(int32_t maxCount = 1 << 20) : limit(maxCount > 0 ? maxCount : 1) {}
  ~OrvUrlHashSet() { OrvFreeBytes(slots); }
  OrvUrlHashSet(const OrvUrlHashSet&) = delete;
  OrvUrlHashSet& operator=(const OrvUrlHashSet&) = delete;

  void Clear() {
    for (uint32_t i = 0; i < capacity; i++) slots[i] = 0;
    count = 0;
    overflow = 0;
  }
  void SetLimit(int32_t maxCount) { limit = maxCount > 0 ? maxCount : 1; }

  // 1 when text was not in the set (now it is), 0 when it was.
  int Insert(const char* text, int64_t len) {
    uint64_t h = Hash(text, len);
    if (capacity && Find(h)) return 0;
    if (count >= limit) {
      overflow++;
      return 1;
    }
    if (uint64_t(count + 1) * 2 > capacity) Grow();
    uint64_t* slot = Slot(h);
    *slot = h;
    count++;
    return 1;
  }
  int Contains(const char* text, int64_t len) const { return capacity && Find(Hash(text, len)); }
  int32_t Count() const { return count; }
  int64_t Overflow() const { return overflow; }

  static uint64_t Hash(const char* text, int64_t len) {
    uint64_t h = 1469598103934665603ull;
    for (int64_t i = 0; i < len; i++) h = (h ^ uint8_t(text[i])) * 1099511628211ull;
    h ^= h >> 31;
    h *= 0x9e3779b97f4a7c15ull;
    h ^= h >> 29;
    return h ? h : 1;  // 0 marks a free slot
  }

 private:
  int Find(uint64_t h) const { return *Slot(h) == h; }
  uint64_t* Slot(uint64_t h) const {
    uint32_t mask = capacity - 1;
    for (uint32_t i = uint32_t(h) & mask;; i = (i + 1) & mask)
      if (slots[i] == h || slots[i] == 0) return &slots[i];
  }
  void Grow() {
    uint32_t old = capacity;
    uint64_t* oldSlots = slots;
    capacity = old ? old * 2 : 64;
    slots = static_cast<uint64_t*>(OrvAllocBytes(sizeof(uint64_t) * capacity));
    for (uint32_t i = 0; i < capacity; i++) slots[i] = 0;
    for (uint32_t i = 0; i < old; i++)
      if (oldSlots[i]) *Slot(oldSlots[i]) = oldSlots[i];
    OrvFreeBytes(oldSlots);
  }

  uint64_t* slots = nullptr;
  uint32_t capacity = 0;  // a power of two, at least twice count
  int32_t count = 0;
  int32_t limit;
  int64_t overflow = 0;
};
