#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvString.h"

// Hash table from byte strings to one value. All key bytes live in one shared
// buffer addressed by offset, so the buffer can move; a bucket is a small array
// of fixed entries. The table is filled, then read by key or through `flat`,
// then emptied with Clear, which keeps its arrays for the next page.
//
// The order of `flat` is a result callers act on: it follows the buckets by
// index and, inside a bucket, the order that arrivals, growth, doublings and
// removals leave. Every step below that moves an entry is therefore deliberate.
template <class V>
class OrvStrMap {
  static_assert(std::is_trivially_copyable_v<V>, "entries are moved bytewise");

 public:
  struct Entry {
    uint32_t hash;  // bit 31 clear
    int32_t keyOffset;
    int32_t keyLen;
    V value;
  };

  // 32-bit counts: adversarial keys may crowd far more than 65,535 entries
  // into one bucket.
  struct Bucket {
    uint32_t capacity;
    uint32_t used;
    Entry* entries;
  };

  uint32_t count;
  Bucket* buckets;
  uint32_t bucketCount;
  Entry** flat;
  char* keys;
  int32_t keysSize;
  int32_t keysUsed;
  int32_t bucketSize;

  OrvStrMap()
      : count(0),
        buckets(nullptr),
        bucketCount(0),
        flat(nullptr),
        keys(nullptr),
        keysSize(0),
        keysUsed(0),
        bucketSize(16) {}
  OrvStrMap(const OrvStrMap&) = delete;
  OrvStrMap& operator=(const OrvStrMap&) = delete;

  ~OrvStrMap() {
    for (uint32_t i = 0; i < bucketCount && buckets; i++) OrvFreeBytes(buckets[i].entries);
    OrvFreeBytes(buckets);
    OrvFreeBytes(keys);
    OrvFreeBytes(flat);
    FreeRetired();
  }

  // Bytes from the last to the first, each as a signed value, wrapping.
  static uint32_t Hash(const char* key, int32_t length) {
    if (!key) return 0;
    int32_t n = Measure(key, length);
    uint32_t h = 5381u;
    for (int32_t i = n - 1; i >= 0; i--)
      h = h * 33u + uint32_t(int32_t(static_cast<signed char>(key[i])));
    return h & 0x7fffffffu;
  }

  V* Find(const char* key, int32_t length) {
    if (!key) return nullptr;
    int32_t n = Measure(key, length);
    if (!buckets) FirstUse();
    uint32_t h = Hash(key, n);
    Entry* e = Search(buckets[h & (bucketCount - 1)], h, key, n);
    return e ? &e->value : nullptr;
  }

  // The address stays good until the next Insert or Remove.
  V* Insert(const char* key, int32_t length, int* found = nullptr) {
    if (!key) return nullptr;
    int32_t n = Measure(key, length);
    if (!buckets) FirstUse();
    uint32_t h = Hash(key, n);
    Bucket* b = &buckets[h & (bucketCount - 1)];
    if (Entry* e = Search(*b, h, key, n)) {
      if (found) *found = 1;
      return &e->value;
    }
    count++;
    if (found) *found = 0;
    if (b->used < b->capacity) return Append(*b, h, key, n);
    if (uint64_t(count) < DoublingLimit() || bucketCount >= 0x80000000u) {
      Grow(*b);
      return Append(*b, h, key, n);
    }
    Double();
    b = &buckets[h & (bucketCount - 1)];
    if (b->used >= b->capacity) Grow(*b);
    return Append(*b, h, key, n);
  }

  int Remove(const char* key, int32_t length, V* oldValue = nullptr) {
    if (!key) return 0;
    int32_t n = Measure(key, length);
    if (!buckets) FirstUse();
    uint32_t h = Hash(key, n);
    Bucket& b = buckets[h & (bucketCount - 1)];
    Entry* e = Search(b, h, key, n);
    if (!e) return 0;
    if (oldValue) *oldValue = e->value;
    b.used--;
    uint32_t pos = uint32_t(e - b.entries);
    if (pos != b.used) b.entries[pos] = b.entries[b.used];
    count--;
    return 1;
  }

  // A snapshot: later Insert and Remove neither update nor drop it.
  int Flatten() {
    if (flat || count == 0) return 0;
    flat = static_cast<Entry**>(OrvAllocBytes(sizeof(Entry*) * count));
    flatCount = 0;
    for (uint32_t i = 0; i < bucketCount; i++)
      for (uint32_t j = 0; j < buckets[i].used; j++) flat[flatCount++] = &buckets[i].entries[j];
    return 1;
  }

  // Entry number index of the flat order. A key of length 0 reads as NULL and 0.
  // An index past the snapshot gives NULL rather than a read out of bounds.
  V* GetAt(uint32_t index, const char** key = nullptr, int32_t* keyLen = nullptr) {
    Flatten();
    if (!flat || index >= flatCount) return nullptr;
    Entry* e = flat[index];
    if (key && keyLen) {
      if (e->keyLen > 0) {
        *key = keys + e->keyOffset;
        *keyLen = e->keyLen;
      } else {
        *key = nullptr;
        *keyLen = 0;
      }
    }
    return &e->value;
  }

  // Empties the table but keeps buckets, entry arrays and key buffer.
  void Clear() {
    OrvFreeBytes(flat);
    flat = nullptr;
    flatCount = 0;
    for (uint32_t i = 0; i < bucketCount && buckets; i++) buckets[i].used = 0;
    count = 0;
    keysUsed = 0;
    FreeRetired();
  }

 private:
  uint32_t flatCount = 0;  // length of the snapshot in `flat`
  // Entry arrays replaced while a snapshot exists: `flat` may still point into
  // them, so they live until Clear.
  Entry** retired = nullptr;
  uint32_t retiredCount = 0;
  uint32_t retiredCapacity = 0;

  static int32_t Measure(const char* key, int32_t length) {
    if (length >= 0) return length;
    long n = Orvstrlen(key);
    return n > INT32_MAX ? INT32_MAX : int32_t(n);
  }

  // A table of the library always has a bucket size of 16; anything below 4
  // would make the quarter growth stall, so it is raised to 4.
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
    keysSize = int32_t(64u * capacity);
    keys = static_cast<char*>(OrvAllocBytes(uint32_t(keysSize)));
    keysUsed = 0;
  }

  Entry* Search(const Bucket& b, uint32_t h, const char* key, int32_t n) const {
    Entry* e = b.entries;
    Entry* end = e + b.used;
    for (; e != end; ++e) {
      if (e->hash != h || e->keyLen != n) continue;
      if (n == 0 || std::memcmp(keys + e->keyOffset, key, size_t(n)) == 0) return e;
    }
    return nullptr;
  }

  // Grows by a twentieth plus 256 once the key would fill the buffer exactly.
  // The key may be a text of this very buffer (from GetAt), so it is copied
  // before the old buffer goes.
  int32_t AddKeyBytes(const char* key, int32_t n) {
    int64_t needed = int64_t(keysUsed) + n;
    char* old = nullptr;
    if (needed >= keysSize) {
      int64_t size = needed + needed / 20 + 256;
      if (size > INT32_MAX) OrvOutOfMemory();
      char* grown = static_cast<char*>(OrvAllocBytes(size_t(size)));
      if (keysUsed > 0) Orvmemcpy(grown, keys, keysUsed);
      old = keys;
      keys = grown;
      keysSize = int32_t(size);
    }
    if (n > 0) Orvmemcpy(keys + keysUsed, key, n);
    OrvFreeBytes(old);
    int32_t offset = keysUsed;
    keysUsed += n;
    return offset;
  }

  V* Append(Bucket& b, uint32_t h, const char* key, int32_t n) {
    Entry& e = b.entries[b.used];
    e.hash = h;
    e.keyOffset = AddKeyBytes(key, n);
    e.keyLen = n;
    e.value = V{};
    b.used++;
    return &e.value;
  }

  // Capacities run 16, 20, 25, 31, 38, 47, 58, 72.
  void Grow(Bucket& b) {
    uint32_t step = b.capacity / 4;
    uint32_t capacity = b.capacity + (step ? step : 1);
    Entry* grown = NewEntries(capacity);
    if (b.used) std::memcpy(static_cast<void*>(grown), b.entries, sizeof(Entry) * b.used);
    Retire(b.entries);
    b.entries = grown;
    b.capacity = capacity;
  }

  // Low bucket i keeps its array; entries with bit n set go to bucket i + n,
  // taken from the back, each hole filled by the low bucket's last entry.
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
        if (!(lo.entries[j].hash & n)) continue;
        hi.entries[hi.used++] = lo.entries[j];
        lo.used--;
        if (j != lo.used) lo.entries[j] = lo.entries[lo.used];
      }
    }
    buckets = grown;
    bucketCount = 2 * n;
    OrvFreeBytes(old);
  }

  void Retire(Entry* entries) {
    if (!flat) {
      OrvFreeBytes(entries);
      return;
    }
    if (retiredCount == retiredCapacity) {
      retiredCapacity = retiredCapacity ? retiredCapacity * 2 : 8;
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
