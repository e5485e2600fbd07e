#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/OrvBucketTable.h"
#include "core/OrvMemory.h"
#include "core/OrvSeededHash.h"
#include "orvwebpage/OrvString.h"

template <class V>
struct OrvStrMapEntry {
  uint32_t hash;  // bit 31 clear
  int32_t keyOffset;
  int32_t keyLen;
  V value;
};

// Hash table from byte strings to one value. All key bytes live in one shared
// buffer addressed by offset, so the buffer can move. The table is filled,
// then read by key or through `flat`, then emptied with Clear, which keeps its
// arrays for the next page.
template <class V>
class OrvStrMap : public OrvBucketTable<OrvStrMapEntry<V>> {
  using Base = OrvBucketTable<OrvStrMapEntry<V>>;

 public:
  using Entry = OrvStrMapEntry<V>;

  char* keys = nullptr;
  int32_t keysSize = 0;
  int32_t keysUsed = 0;

  ~OrvStrMap() { OrvFreeBytes(keys); }

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
    Start();
    uint32_t h = Hash(key, n);
    Entry* e = Search(h, key, n);
    return e ? &e->value : nullptr;
  }

  // The address stays good until the next Insert or Remove.
  V* Insert(const char* key, int32_t length, int* found = nullptr) {
    if (!key) return nullptr;
    int32_t n = Measure(key, length);
    Start();
    uint32_t h = Hash(key, n);
    if (Entry* e = Search(h, key, n)) {
      if (found) *found = 1;
      return &e->value;
    }
    if (found) *found = 0;
    Entry* e = this->AddEntry(
        h, [](const Entry& x) { return x.hash; }, SeededOf(),
        [key, n] { return OrvSeededHash(key, n); });
    e->hash = h;
    e->keyOffset = AddKeyBytes(key, n);
    e->keyLen = n;
    e->value = V{};
    return &e->value;
  }

  int Remove(const char* key, int32_t length, V* oldValue = nullptr) {
    if (!key) return 0;
    int32_t n = Measure(key, length);
    Start();
    uint32_t h = Hash(key, n);
    Entry* e = Search(h, key, n);
    if (!e) return 0;
    if (oldValue) *oldValue = e->value;
    this->RemoveEntry(this->BucketOf(h), e, SeededOf());
    return 1;
  }

  // Entry number index of the flat order. A key of length 0 reads as NULL and 0.
  V* GetAt(uint32_t index, const char** key = nullptr, int32_t* keyLen = nullptr) {
    Entry* e = this->FlatEntry(index);
    if (!e) return nullptr;
    if (key && keyLen) {
      *key = e->keyLen > 0 ? keys + e->keyOffset : nullptr;
      *keyLen = e->keyLen > 0 ? e->keyLen : 0;
    }
    return &e->value;
  }

  // Empties the table but keeps buckets, entry arrays and key buffer.
  void Clear() {
    Base::Clear();
    keysUsed = 0;
  }

 private:
  static int32_t Measure(const char* key, int32_t length) {
    if (length >= 0) return length;
    long n = Orvstrlen(key);
    return n > INT32_MAX ? INT32_MAX : int32_t(n);
  }

  Entry* Search(uint32_t h, const char* key, int32_t n) const {
    return Base::Search(
        this->BucketOf(h),
        [&](const Entry& e) {
          return e.hash == h && e.keyLen == n &&
                 (n == 0 || std::memcmp(keys + e.keyOffset, key, size_t(n)) == 0);
        },
        [key, n] { return OrvSeededHash(key, n); });
  }

  auto SeededOf() const {
    return [this](const Entry& e) { return OrvSeededHash(keys + e.keyOffset, e.keyLen); };
  }

  // Even Find makes the first arrays, with 64 key bytes per entry slot of a
  // bucket.
  void Start() {
    if (this->buckets) return;
    this->FirstUse();
    keysSize = int32_t(64u * this->FreshCapacity());
    keys = static_cast<char*>(OrvAllocBytes(uint32_t(keysSize)));
    keysUsed = 0;
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
};
