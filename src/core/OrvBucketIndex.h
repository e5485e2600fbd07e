#pragma once

#include <cstdint>

#include "core/OrvMemory.h"

// The positions of one long bucket's entries, found by a seeded hash in an
// open-addressed table (linear probing, at most half full). Keys that share
// the fixed hash share a bucket, but not a run of this table, so a lookup
// among them costs about what it costs among ordinary keys. The bucket keeps
// its own order; only this index knows where to look.
class OrvBucketIndex {
 public:
  static constexpr uint32_t kNone = UINT32_MAX;

  struct Slot {
    uint32_t seeded;
    uint32_t pos;  // kNone when empty
  };

  // Room for `expected` positions before the first growth.
  static OrvBucketIndex* New(uint32_t expected) {
    uint32_t size = 64;
    while (size < 0x80000000u && size / 2 < expected) size *= 2;
    auto* index = static_cast<OrvBucketIndex*>(OrvAllocBytes(sizeof(OrvBucketIndex)));
    index->mask = size - 1;
    index->filled = 0;
    index->slots = static_cast<Slot*>(OrvAllocBytes(sizeof(Slot) * size_t(size)));
    for (uint32_t i = 0; i < size; i++) index->slots[i] = Slot{0, kNone};
    return index;
  }

  static void Free(OrvBucketIndex* index) {
    if (!index) return;
    OrvFreeBytes(index->slots);
    OrvFreeBytes(index);
  }

  void Add(uint32_t seeded, uint32_t pos) {
    if (uint64_t(filled) + 1 > (uint64_t(mask) + 1) / 2) Widen();
    Place(Slot{seeded, pos});
    filled++;
  }

  // The first position of that seeded hash whose entry `match` accepts.
  template <class Match>
  uint32_t Find(uint32_t seeded, Match match) const {
    for (uint32_t i = seeded & mask;; i = (i + 1) & mask) {
      const Slot& s = slots[i];
      if (s.pos == kNone) return kNone;
      if (s.seeded == seeded && match(s.pos)) return s.pos;
    }
  }

  // The entry at `pos` moved to `to`.
  void Move(uint32_t seeded, uint32_t pos, uint32_t to) {
    uint32_t i = SlotOf(seeded, pos);
    if (i != kNone) slots[i].pos = to;
  }

  // Backward-shift deletion: no tombstones, so runs never lengthen.
  void Remove(uint32_t seeded, uint32_t pos) {
    uint32_t hole = SlotOf(seeded, pos);
    if (hole == kNone) return;
    filled--;
    for (uint32_t j = hole;;) {
      j = (j + 1) & mask;
      if (slots[j].pos == kNone) break;
      uint32_t home = slots[j].seeded & mask;
      bool stays = hole <= j ? (hole < home && home <= j) : (hole < home || home <= j);
      if (stays) continue;
      slots[hole] = slots[j];
      hole = j;
    }
    slots[hole] = Slot{0, kNone};
  }

 private:
  uint32_t mask;
  uint32_t filled;
  Slot* slots;

  uint32_t SlotOf(uint32_t seeded, uint32_t pos) const {
    for (uint32_t i = seeded & mask;; i = (i + 1) & mask) {
      if (slots[i].pos == kNone) return kNone;
      if (slots[i].pos == pos) return i;
    }
  }

  void Place(Slot slot) {
    uint32_t i = slot.seeded & mask;
    while (slots[i].pos != kNone) i = (i + 1) & mask;
    slots[i] = slot;
  }

  void Widen() {
    if (mask >= 0x7fffffffu) OrvOutOfMemory();
    Slot* old = slots;
    uint32_t oldSize = mask + 1;
    mask = oldSize * 2 - 1;
    slots = static_cast<Slot*>(OrvAllocBytes(sizeof(Slot) * (size_t(mask) + 1)));
    for (uint32_t i = 0; i <= mask; i++) slots[i] = Slot{0, kNone};
    for (uint32_t i = 0; i < oldSize; i++)
      if (old[i].pos != kNone) Place(old[i]);
    OrvFreeBytes(old);
  }
};
