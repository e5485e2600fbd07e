#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/OrvMemory.h"

// Hash table from an integer key (32-bit or 64-bit) to one plain value, built
// like OrvStrMap: buckets of fixed entries, doubling only when a key falls into
// a full bucket, and a flat snapshot whose order is a result.
//
// There is no hash function: the bucket is the low 32 bits of the key masked
// with bucketCount - 1, so consecutive depths land in consecutive buckets and
// the flat order of a depth map is fixed by the depths alone.
struct OrvLowBits {
  template <class K>
  static uint32_t Of(K key) {
    return static_cast<uint32_t>(static_cast<uint64_t>(key));
  }
};

// For a map that is never enumerated, whose order nobody sees: keys that are
// addresses of aligned records would leave all but every eighth bucket empty
// and the others long, so the alignment bits are dropped. Neighbouring
// records still fall into neighbouring buckets. Lookups answer the same.
struct OrvAddressBits {
  template <class K>
  static uint32_t Of(K key) {
    return static_cast<uint32_t>(static_cast<uint64_t>(key) >> 12);
  }
};

template <class K, class V, class Spread = OrvLowBits>
class OrvIntMap {
  static_assert(std::is_integral_v<K>, "integer keys only");
  static_assert(std::is_trivially_copyable_v<V>, "entries are moved bytewise");

 public:
  struct Entry {
    K key;
    V value;
  };

  // 32-bit counts: aligned pointer keys can crowd one bucket far beyond 65,535.
  struct Bucket {
    uint32_t capacity;
    uint32_t used;
    Entry* entries;
  };

  uint32_t count;
  Bucket* buckets;
  uint32_t bucketCount;
  Entry** flat;  // `count` long when built; see Flatten
  int32_t bucketSize;

  OrvIntMap() : count(0), buckets(nullptr), bucketCount(0), flat(nullptr), bucketSize(16) {}
  OrvIntMap(const OrvIntMap&) = delete;
  OrvIntMap& operator=(const OrvIntMap&) = delete;

  ~OrvIntMap() {
    for (uint32_t i = 0; i < bucketCount; i++) OrvFreeBytes(buckets[i].entries);
    OrvFreeBytes(buckets);
    OrvFreeBytes(flat);
  }

  static uint32_t Low(K key) { return Spread::Of(key); }

  // A new table finds nothing and allocates nothing.
  V* Find(K key) {
    if (!buckets) return nullptr;
    Entry* e = Search(buckets[Low(key) & (bucketCount - 1)], key);
    return e ? &e->value : nullptr;
  }

  // The address stays good until the next Insert or Remove. A new entry's
  // value is zero.
  V* Insert(K key, int* found = nullptr) {
    if (!buckets) FirstUse();
    Bucket* b = &buckets[Low(key) & (bucketCount - 1)];
    if (Entry* e = Search(*b, key)) {
      if (found) *found = 1;
      return &e->value;
    }
    count++;
    if (found) *found = 0;
    if (b->used < b->capacity) return Append(*b, key);
    if (uint64_t(count) < DoublingLimit() || bucketCount >= 0x80000000u) {
      Grow(*b);
      return Append(*b, key);
    }
    Double();
    b = &buckets[Low(key) & (bucketCount - 1)];
    if (b->used >= b->capacity) Grow(*b);
    return Append(*b, key);
  }

  // The hole is filled by the bucket's last entry; `flat` is left alone.
  int Remove(K key, V* oldValue = nullptr) {
    if (!buckets) return 0;
    Bucket& b = buckets[Low(key) & (bucketCount - 1)];
    Entry* e = Search(b, key);
    if (!e) return 0;
    if (oldValue) *oldValue = e->value;
    b.used--;
    uint32_t pos = uint32_t(e - b.entries);
    if (pos != b.used) b.entries[pos] = b.entries[b.used];
    count--;
    return 1;
  }

  // Buckets by rising index, entries by position. A snapshot, good until the
  // next Insert, Remove or Clear; a caller that changed the table frees it
  // with DropFlat and builds it again.
  int Flatten() {
    if (flat || count == 0) return 0;
    flat = static_cast<Entry**>(OrvAllocBytes(sizeof(Entry*) * count));
    uint32_t n = 0;
    for (uint32_t i = 0; i < bucketCount; i++)
      for (uint32_t j = 0; j < buckets[i].used; j++) flat[n++] = &buckets[i].entries[j];
    return 1;
  }

  void DropFlat() {
    OrvFreeBytes(flat);
    flat = nullptr;
  }

  // Empties the table but keeps the buckets and their arrays.
  void Clear() {
    DropFlat();
    for (uint32_t i = 0; i < bucketCount; i++) buckets[i].used = 0;
    count = 0;
  }

 private:
  // A bucket size below 4 would make the quarter growth stall.
  uint32_t FreshCapacity() const { return bucketSize < 4 ? 4u : uint32_t(bucketSize); }

  uint64_t DoublingLimit() const { return uint64_t(FreshCapacity() / 4) * bucketCount * 3u; }

  static Entry* NewEntries(uint32_t n) {
    return static_cast<Entry*>(OrvAllocBytes(sizeof(Entry) * (n ? n : 1)));
  }

  void FirstUse() {
    bucketCount = 4;
    buckets = static_cast<Bucket*>(OrvAllocBytes(sizeof(Bucket) * 4));
    uint32_t capacity = FreshCapacity();
    for (uint32_t i = 0; i < 4; i++) buckets[i] = Bucket{capacity, 0, NewEntries(capacity)};
  }

  static Entry* Search(const Bucket& b, K key) {
    Entry* e = b.entries;
    Entry* end = e + b.used;
    for (; e != end; ++e)
      if (e->key == key) return e;
    return nullptr;
  }

  static V* Append(Bucket& b, K key) {
    Entry& e = b.entries[b.used];
    e.key = key;
    e.value = V{};
    b.used++;
    return &e.value;
  }

  // Capacities run 16, 20, 25, 31, 38, 47, 58, 72.
  static void Grow(Bucket& b) {
    uint32_t step = b.capacity / 4;
    uint64_t capacity = uint64_t(b.capacity) + (step ? step : 1);
    if (capacity > UINT32_MAX) OrvOutOfMemory();
    Entry* grown = NewEntries(uint32_t(capacity));
    if (b.used) std::memcpy(static_cast<void*>(grown), b.entries, sizeof(Entry) * b.used);
    OrvFreeBytes(b.entries);
    b.entries = grown;
    b.capacity = uint32_t(capacity);
  }

  // Low bucket i keeps its array; entries with bit n of the key (as spread)
  // set go to bucket i + n, taken from the back, each hole filled by the low
  // bucket's last entry.
  void Double() {
    uint32_t n = bucketCount;
    Bucket* old = buckets;
    Bucket* grown = static_cast<Bucket*>(OrvAllocBytes(sizeof(Bucket) * 2 * size_t(n)));
    for (uint32_t i = 0; i < n; i++) {
      Bucket& lo = grown[i];
      Bucket& hi = grown[i + n];
      lo = old[i];
      hi = Bucket{lo.capacity, 0, NewEntries(lo.capacity)};
      for (uint32_t j = lo.used; j-- > 0;) {
        if (!(Low(lo.entries[j].key) & n)) continue;
        hi.entries[hi.used++] = lo.entries[j];
        lo.used--;
        if (j != lo.used) lo.entries[j] = lo.entries[lo.used];
      }
    }
    buckets = grown;
    bucketCount = 2 * n;
    OrvFreeBytes(old);
  }
};
