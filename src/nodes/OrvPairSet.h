#pragma once

#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"

// Open-addressing set of pointer pairs, such as (list, item): "does this list
// already hold a record of this item" in constant time instead of a scan of
// the list. The first pointer of a pair is never null; the second may be.
// Nothing is ever removed singly: Clear empties the set and keeps its array.
class OrvPairSet {
 public:
  OrvPairSet() = default;
  OrvPairSet(const OrvPairSet&) = delete;
  OrvPairSet& operator=(const OrvPairSet&) = delete;
  ~OrvPairSet() { OrvFreeBytes(slots); }

  bool Contains(const void* a, const void* b) const {
    if (!slots) return false;
    uintptr_t ka = reinterpret_cast<uintptr_t>(a);
    uintptr_t kb = reinterpret_cast<uintptr_t>(b);
    for (size_t i = Start(ka, kb);; i = (i + 1) & mask) {
      const Slot& s = slots[i];
      if (s.a == 0) return false;
      if (s.a == ka && s.b == kb) return true;
    }
  }

  // Returns true if the pair was new.
  bool Add(const void* a, const void* b) {
    if ((used + 1) * 2 > capacity) Enlarge();
    uintptr_t ka = reinterpret_cast<uintptr_t>(a);
    uintptr_t kb = reinterpret_cast<uintptr_t>(b);
    for (size_t i = Start(ka, kb);; i = (i + 1) & mask) {
      Slot& s = slots[i];
      if (s.a == 0) {
        s.a = ka;
        s.b = kb;
        used++;
        return true;
      }
      if (s.a == ka && s.b == kb) return false;
    }
  }

  void Clear() {
    if (slots && used) std::memset(static_cast<void*>(slots), 0, capacity * sizeof(Slot));
    used = 0;
  }

  size_t Size() const { return used; }

 private:
  struct Slot {
    uintptr_t a;  // 0: empty
    uintptr_t b;
  };

  Slot* slots = nullptr;
  size_t capacity = 0;  // a power of two
  size_t mask = 0;
  size_t used = 0;

  size_t Start(uintptr_t a, uintptr_t b) const {
    uint64_t h = uint64_t(a) * 0x9E3779B97F4A7C15ull;
    h ^= uint64_t(b) + 0x632BE59BD9B4E019ull + (h << 6) + (h >> 2);
    h ^= h >> 29;
    h *= 0xBF58476D1CE4E5B9ull;
    h ^= h >> 32;
    return size_t(h) & mask;
  }

  void Enlarge() {
    size_t grown = capacity ? capacity * 2 : 64;
    Slot* old = slots;
    size_t oldCapacity = capacity;
    slots = static_cast<Slot*>(OrvAllocBytes(grown * sizeof(Slot)));
    std::memset(static_cast<void*>(slots), 0, grown * sizeof(Slot));
    capacity = grown;
    mask = grown - 1;
    used = 0;
    for (size_t i = 0; i < oldCapacity; i++)
      if (old[i].a)  // the addresses the slots keep as integers, given back as they came
        Add(reinterpret_cast<const void*>(old[i].a),   // NOLINT(performance-no-int-to-ptr)
            reinterpret_cast<const void*>(old[i].b));  // NOLINT(performance-no-int-to-ptr)
    OrvFreeBytes(old);
  }
};
