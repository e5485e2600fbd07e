#pragma once

#include <cstdint>
#include <type_traits>

#include "core/OrvBucketTable.h"
#include "core/OrvSeededHash.h"

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

template <class K, class V>
struct OrvIntMapEntry {
  K key;
  V value;
};

// Hash table from an integer key (32-bit or 64-bit) to one plain value.
template <class K, class V, class Spread = OrvLowBits>
class OrvIntMap : public OrvBucketTable<OrvIntMapEntry<K, V>> {
  static_assert(std::is_integral_v<K>, "integer keys only");
  using Base = OrvBucketTable<OrvIntMapEntry<K, V>>;

 public:
  using Entry = OrvIntMapEntry<K, V>;

  static uint32_t Low(K key) { return Spread::Of(key); }

  // A new table finds nothing and allocates nothing.
  V* Find(K key) {
    Entry* e = Search(key);
    return e ? &e->value : nullptr;
  }

  // The address stays good until the next Insert or Remove. A new entry's
  // value is zero.
  V* Insert(K key, int* found = nullptr) {
    if (Entry* e = Search(key)) {
      if (found) *found = 1;
      return &e->value;
    }
    if (found) *found = 0;
    Entry* e = this->AddEntry(
        Low(key), [](const Entry& x) { return Low(x.key); }, SeededOf,
        [key] { return OrvSeededHash(uint64_t(key)); });
    e->key = key;
    e->value = V{};
    return &e->value;
  }

  int Remove(K key, V* oldValue = nullptr) {
    Entry* e = Search(key);
    if (!e) return 0;
    if (oldValue) *oldValue = e->value;
    this->RemoveEntry(this->BucketOf(Low(key)), e, SeededOf);
    return 1;
  }

 private:
  static uint32_t SeededOf(const Entry& e) { return OrvSeededHash(uint64_t(e.key)); }

  Entry* Search(K key) const {
    return Base::Search(
        this->BucketOf(Low(key)), [key](const Entry& e) { return e.key == key; },
        [key] { return OrvSeededHash(uint64_t(key)); });
  }
};
