#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/OrvBucketIndex.h"
#include "core/OrvMemory.h"

// The hash table under OrvStrMap and OrvIntMap: buckets of fixed entries
// chosen by the low bits of a 32-bit spread, doubling only when a new key
// falls into a full bucket, and a flat snapshot of all entries.
//
// The order of `flat` is a result callers act on: it follows the buckets by
// index and, inside a bucket, the order that arrivals, growth, doublings and
// removals leave. Every step below that moves an entry is therefore deliberate.
// The typed faces say what a key is, how it spreads and how it matches.
//
// A bucket past indexFrom entries is also indexed by a seeded hash (see
// OrvBucketIndex), so keys crafted to share the fixed hash are found as fast
// as any; the index never moves an entry.
template <class Entry>
class OrvBucketTable {
  static_assert(std::is_trivially_copyable_v<Entry>, "entries are moved bytewise");

 public:
  // 32-bit counts: adversarial or aligned keys may crowd far more than 65,535
  // entries into one bucket.
  struct Bucket {
    uint32_t capacity;
    uint32_t used;
    Entry* entries;
    OrvBucketIndex* index;  // only for a long bucket
  };

  uint32_t count;
  Bucket* buckets;
  uint32_t bucketCount;
  Entry** flat;  // flatCount long when built; see Flatten
  int32_t bucketSize;
  // Buckets of at least this many entries get an index; any value gives the
  // same results, only lookups among crowded keys speed up.
  uint32_t indexFrom = 32;

  OrvBucketTable() : count(0), buckets(nullptr), bucketCount(0), flat(nullptr), bucketSize(16) {}
  OrvBucketTable(const OrvBucketTable&) = delete;
  OrvBucketTable& operator=(const OrvBucketTable&) = delete;

  ~OrvBucketTable() {
    for (uint32_t i = 0; i < bucketCount; i++) {
      OrvFreeBytes(buckets[i].entries);
      OrvBucketIndex::Free(buckets[i].index);
    }
    OrvFreeBytes(buckets);
    OrvFreeBytes(flat);
    FreeRetired();
  }

  // Buckets by rising index, entries by position. A snapshot: later Insert and
  // Remove neither update nor drop it, and it stays readable until DropFlat or
  // Clear.
  int Flatten() {
    if (flat || count == 0) return 0;
    // NOLINTNEXTLINE(bugprone-sizeof-expression): sizes an array of pointers
    flat = static_cast<Entry**>(OrvAllocBytes(sizeof(Entry*) * count));
    flatCount = 0;
    for (uint32_t i = 0; i < bucketCount; i++)
      for (uint32_t j = 0; j < buckets[i].used; j++) flat[flatCount++] = &buckets[i].entries[j];
    return 1;
  }

  // Entry number index of the flat order, built if there is none; an index
  // past the snapshot gives NULL rather than a read out of bounds.
  Entry* FlatEntry(uint32_t index) {
    Flatten();
    return flat && index < flatCount ? flat[index] : nullptr;
  }

  void DropFlat() {
    OrvFreeBytes(flat);
    flat = nullptr;
    flatCount = 0;
    FreeRetired();
  }

  // Empties the table but keeps the buckets and their arrays.
  void Clear() {
    DropFlat();
    for (uint32_t i = 0; i < bucketCount; i++) {
      buckets[i].used = 0;
      OrvBucketIndex::Free(buckets[i].index);
      buckets[i].index = nullptr;
    }
    count = 0;
  }

 protected:
  // A table of the library always has a bucket size of 16; anything below 4
  // would make the quarter growth stall, so it is raised to 4.
  uint32_t FreshCapacity() const { return bucketSize < 4 ? 4u : uint32_t(bucketSize); }

  void FirstUse() {
    bucketCount = 4;
    buckets = static_cast<Bucket*>(OrvAllocBytes(sizeof(Bucket) * 4));
    uint32_t capacity = FreshCapacity();
    for (uint32_t i = 0; i < 4; i++)
      buckets[i] = Bucket{capacity, 0, NewEntries(capacity), nullptr};
  }

  Bucket* BucketOf(uint32_t spread) const {
    return buckets ? &buckets[spread & (bucketCount - 1)] : nullptr;
  }

  // probeSeeded() gives the seeded hash of the key searched for; it is only
  // asked in an indexed bucket.
  template <class Match, class ProbeSeeded>
  static Entry* Search(const Bucket* b, Match match, ProbeSeeded probeSeeded) {
    if (!b) return nullptr;
    if (b->index) {
      uint32_t pos =
          b->index->Find(probeSeeded(), [&](uint32_t p) { return match(b->entries[p]); });
      return pos == OrvBucketIndex::kNone ? nullptr : &b->entries[pos];
    }
    for (Entry *e = b->entries, *end = e + b->used; e != end; ++e)
      if (match(*e)) return e;
    return nullptr;
  }

  // The slot for a new key of that spread, counted, in the bucket it belongs
  // to after any growth; spreadOf(entry) re-spreads entries when buckets double,
  // seededOf(entry) indexes them, newSeeded() is the new key's seeded hash.
  template <class SpreadOf, class SeededOf, class NewSeeded>
  Entry* AddEntry(uint32_t spread, SpreadOf spreadOf, SeededOf seededOf, NewSeeded newSeeded) {
    if (!buckets) FirstUse();
    count++;
    Bucket* b = BucketOf(spread);
    if (b->used >= b->capacity) {
      if (uint64_t(count) < DoublingLimit() || bucketCount >= 0x80000000u) {
        Grow(*b);
      } else {
        Double(spreadOf, seededOf);
        b = BucketOf(spread);
        if (b->used >= b->capacity) Grow(*b);
      }
    }
    if (!b->index && b->used >= indexFrom) Reindex(*b, seededOf);
    if (b->index) b->index->Add(newSeeded(), b->used);
    return &b->entries[b->used++];
  }

  // The hole is filled by the bucket's last entry; `flat` is left alone.
  template <class SeededOf>
  void RemoveEntry(Bucket* b, Entry* e, SeededOf seededOf) {
    uint32_t pos = uint32_t(e - b->entries);
    if (b->index) {
      b->index->Remove(seededOf(*e), pos);
      if (pos + 1 != b->used) b->index->Move(seededOf(b->entries[b->used - 1]), b->used - 1, pos);
    }
    b->used--;
    if (pos != b->used) b->entries[pos] = b->entries[b->used];
    count--;
  }

 private:
  uint32_t flatCount = 0;
  // Entry arrays replaced while a snapshot exists: `flat` may still point into
  // them, so they live until the snapshot goes.
  Entry** retired = nullptr;
  uint32_t retiredCount = 0;
  uint32_t retiredCapacity = 0;

  uint64_t DoublingLimit() const { return uint64_t(FreshCapacity() / 4) * bucketCount * 3u; }

  static Entry* NewEntries(uint32_t n) {
    return static_cast<Entry*>(OrvAllocBytes(sizeof(Entry) * (n ? n : 1)));
  }

  // Capacities run 16, 20, 25, 31, 38, 47, 58, 72.
  void Grow(Bucket& b) {
    uint32_t step = b.capacity / 4;
    uint64_t capacity = uint64_t(b.capacity) + (step ? step : 1);
    if (capacity > UINT32_MAX) OrvOutOfMemory();
    Entry* grown = NewEntries(uint32_t(capacity));
    if (b.used) std::memcpy(static_cast<void*>(grown), b.entries, sizeof(Entry) * b.used);
    Retire(b.entries);
    b.entries = grown;
    b.capacity = uint32_t(capacity);
  }

  // Low bucket i keeps its array; entries with bit n of their spread set go to
  // bucket i + n, taken from the back, each hole filled by the low bucket's
  // last entry.
  template <class SpreadOf, class SeededOf>
  void Double(SpreadOf spreadOf, SeededOf seededOf) {
    uint32_t n = bucketCount;
    Bucket* old = buckets;
    Bucket* grown = static_cast<Bucket*>(OrvAllocBytes(sizeof(Bucket) * 2 * size_t(n)));
    for (uint32_t i = 0; i < n; i++) {
      Bucket& lo = grown[i];
      Bucket& hi = grown[i + n];
      lo = old[i];
      hi = Bucket{lo.capacity, 0, NewEntries(lo.capacity), nullptr};
      for (uint32_t j = lo.used; j-- > 0;) {
        if (!(spreadOf(lo.entries[j]) & n)) continue;
        hi.entries[hi.used++] = lo.entries[j];
        lo.used--;
        if (j != lo.used) lo.entries[j] = lo.entries[lo.used];
      }
      if (lo.index || lo.used >= indexFrom) Reindex(lo, seededOf);
      if (hi.used >= indexFrom) Reindex(hi, seededOf);
    }
    buckets = grown;
    bucketCount = 2 * n;
    OrvFreeBytes(old);
  }

  // A fresh index of the bucket's entries, or none for a short bucket.
  template <class SeededOf>
  void Reindex(Bucket& b, SeededOf seededOf) {
    OrvBucketIndex::Free(b.index);
    b.index = nullptr;
    if (b.used < indexFrom) return;
    b.index = OrvBucketIndex::New(b.used + 1);
    for (uint32_t i = 0; i < b.used; i++) b.index->Add(seededOf(b.entries[i]), i);
  }

  void Retire(Entry* entries) {
    if (!flat) {
      OrvFreeBytes(entries);
      return;
    }
    if (retiredCount == retiredCapacity) {
      retiredCapacity = retiredCapacity ? retiredCapacity * 2 : 8;
      // NOLINTNEXTLINE(bugprone-sizeof-expression): as in Flatten
      retired = static_cast<Entry**>(OrvReallocBytes(retired, sizeof(Entry*) * retiredCapacity));
    }
    retired[retiredCount++] = entries;
  }

  void FreeRetired() {
    for (uint32_t i = 0; i < retiredCount; i++) OrvFreeBytes(retired[i]);
    OrvFreeBytes(retired);
    retired = nullptr;
    retiredCount = retiredCapacity = 0;
  }
};
