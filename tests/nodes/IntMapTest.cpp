#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "core/OrvIntMap.h"

namespace {

using DepthMap = OrvIntMap<int32_t, int32_t>;
using PointerMap = OrvIntMap<uint64_t, int32_t>;

template <class Map>
std::vector<int64_t> Bucket(const Map& map, uint32_t i) {
  std::vector<int64_t> keys;
  for (uint32_t j = 0; j < map.buckets[i].used; j++)
    keys.push_back(int64_t(map.buckets[i].entries[j].key));
  return keys;
}

template <class Map>
std::vector<int64_t> FlatKeys(Map& map) {
  map.DropFlat();
  map.Flatten();
  std::vector<int64_t> keys;
  for (uint32_t i = 0; map.flat && i < map.count; i++) keys.push_back(int64_t(map.flat[i]->key));
  return keys;
}

}  // namespace

TEST(IntMap, NewTableFindsNothingAndAllocatesNothing) {
  DepthMap map;
  EXPECT_EQ(map.Find(3), nullptr);
  EXPECT_EQ(map.Remove(3), 0);
  EXPECT_EQ(map.buckets, nullptr);
  EXPECT_EQ(map.bucketCount, 0u);
  EXPECT_EQ(map.Flatten(), 0);
  EXPECT_EQ(map.flat, nullptr);
}

// The bucket is the low bits of the key itself, so consecutive keys go round
// the buckets and a full bucket only doubles the table from 48 keys on.
TEST(IntMap, GrowthAndDoubling) {
  struct Case {
    std::vector<int32_t> keys;
    uint32_t bucketCount;
    std::vector<uint32_t> capacities;
    std::vector<std::vector<int64_t>> firstBuckets;  // checked when not empty
  } cases[] = {
      // 1..64: four buckets of 16 each, nothing grown.
      {[] {
         std::vector<int32_t> k;
         for (int32_t i = 1; i <= 64; i++) k.push_back(i);
         return k;
       }(),
       4,
       {16, 16, 16, 16},
       {}},
      // Key 65 finds bucket 1 full with count 65 >= 48: the table doubles on
      // bit 2, moved keys land in the high bucket from the back, each hole is
      // filled by the low bucket's last key.
      {[] {
         std::vector<int32_t> k;
         for (int32_t i = 1; i <= 65; i++) k.push_back(i);
         return k;
       }(),
       8,
       {16, 16, 16, 16, 16, 16, 16, 16},
       {{64, 8, 40, 16, 56, 24, 48, 32},
        {1, 33, 9, 49, 17, 41, 25, 57, 65},
        {2, 34, 10, 50, 18, 42, 26, 58},
        {3, 35, 11, 51, 19, 43, 27, 59},
        {60, 52, 44, 36, 28, 20, 12, 4},
        {61, 53, 45, 37, 29, 21, 13, 5},
        {62, 54, 46, 38, 30, 22, 14, 6},
        {63, 55, 47, 39, 31, 23, 15, 7}}},
      // A 17th key in one bucket with count below 48: that bucket grows by a
      // quarter and the table keeps its four buckets.
      {[] {
         std::vector<int32_t> k;
         for (int32_t i = 0; i < 17; i++) k.push_back(4 * i);
         return k;
       }(),
       4,
       {20, 16, 16, 16},
       {}},
      // Buckets keep growing by quarters: 16, 20, 25, 31, 38, 47.
      {[] {
         std::vector<int32_t> k;
         for (int32_t i = 0; i < 47; i++) k.push_back(4 * i);
         return k;
       }(),
       4,
       {47, 16, 16, 16},
       {}},
      // The 48th key in a full bucket reaches the limit: doubling moves
      // nothing (bit 2 is clear in every key) and the bucket grows after it.
      {[] {
         std::vector<int32_t> k;
         for (int32_t i = 0; i < 48; i++) k.push_back(8 * i);
         return k;
       }(),
       8,
       {58, 16, 16, 16, 47, 16, 16, 16},
       {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.keys.size());
    DepthMap map;
    for (int32_t key : c.keys) {
      int found = -1;
      int32_t* value = map.Insert(key, &found);
      ASSERT_NE(value, nullptr);
      EXPECT_EQ(found, 0);
      EXPECT_EQ(*value, 0);
      *value = key * 10;
    }
    EXPECT_EQ(map.count, c.keys.size());
    ASSERT_EQ(map.bucketCount, c.bucketCount);
    for (uint32_t i = 0; i < map.bucketCount; i++)
      EXPECT_EQ(map.buckets[i].capacity, c.capacities[i]) << i;
    for (size_t i = 0; i < c.firstBuckets.size(); i++)
      EXPECT_EQ(Bucket(map, uint32_t(i)), c.firstBuckets[i]) << i;
    for (int32_t key : c.keys) {
      int32_t* value = map.Find(key);
      ASSERT_NE(value, nullptr) << key;
      EXPECT_EQ(*value, key * 10);
    }
    EXPECT_EQ(map.Find(1000), nullptr);
  }
}

// Flat order: buckets by index, then order of arrival; depth keys of one
// bucket are those equal modulo the bucket count.
TEST(IntMap, FlatOrderFollowsLowBitsThenArrival) {
  struct Case {
    std::vector<int32_t> keys;
    std::vector<int64_t> flat;
  } cases[] = {
      {{6, 5, 4, 3, 2, 1}, {4, 5, 1, 6, 2, 3}},
      {{1, 2, 3, 4, 5, 6, 7, 8, 9}, {4, 8, 1, 5, 9, 2, 6, 3, 7}},
      // Negative keys fall by their low bits: -1 is 0xffffffff, bucket 3.
      {{-1, 0, -4, 2}, {0, -4, 2, -1}},
      {{}, {}},
  };
  for (const Case& c : cases) {
    DepthMap map;
    for (int32_t key : c.keys) *map.Insert(key) = 1;
    EXPECT_EQ(FlatKeys(map), c.flat);
  }
}

TEST(IntMap, WideKeysCompareBothHalves) {
  PointerMap map;
  const uint64_t low = 0x10;
  const uint64_t high = (uint64_t(1) << 40) | 0x10;
  *map.Insert(low) = 1;
  int found = -1;
  *map.Insert(high, &found) = 2;
  EXPECT_EQ(found, 0);
  EXPECT_EQ(map.count, 2u);
  // Same low 32 bits: the same bucket, two entries.
  EXPECT_EQ(Bucket(map, 0), (std::vector<int64_t>{int64_t(low), int64_t(high)}));
  EXPECT_EQ(*map.Find(low), 1);
  EXPECT_EQ(*map.Find(high), 2);
  EXPECT_EQ(map.Find(uint64_t(1) << 40), nullptr);
  EXPECT_EQ(*map.Insert(high, &found), 2);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(map.count, 2u);
}

TEST(IntMap, RemoveFillsTheHoleWithTheLastEntry) {
  struct Case {
    int32_t removed;
    int result;
    std::vector<int64_t> bucket0;
  } cases[] = {
      {0, 1, {16, 4, 8, 12}},     {16, 1, {0, 4, 8, 12}},    {8, 1, {0, 4, 16, 12}},
      {20, 0, {0, 4, 8, 12, 16}}, {1, 0, {0, 4, 8, 12, 16}},
  };
  for (const Case& c : cases) {
    DepthMap map;
    for (int32_t key : {0, 4, 8, 12, 16}) *map.Insert(key) = key + 1;
    *map.Insert(1) = 2;
    map.Remove(1);
    int32_t old = -1;
    EXPECT_EQ(map.Remove(c.removed, &old), c.result);
    EXPECT_EQ(old, c.result ? c.removed + 1 : -1);
    EXPECT_EQ(map.count, c.bucket0.size());
    EXPECT_EQ(Bucket(map, 0), c.bucket0);
    EXPECT_EQ(map.Find(c.removed), nullptr);
  }
}

TEST(IntMap, ClearKeepsTheGrownTable) {
  DepthMap map;
  for (int32_t key = 1; key <= 65; key++) *map.Insert(key) = key;
  map.Flatten();
  ASSERT_NE(map.flat, nullptr);
  auto* buckets = map.buckets;
  map.Clear();
  EXPECT_EQ(map.count, 0u);
  EXPECT_EQ(map.flat, nullptr);
  EXPECT_EQ(map.bucketCount, 8u);
  EXPECT_EQ(map.buckets, buckets);
  EXPECT_EQ(map.Find(5), nullptr);
  EXPECT_EQ(map.Flatten(), 0);
  // Refilled under 8 buckets: 1..9 now stand by their low three bits.
  for (int32_t key = 1; key <= 9; key++) *map.Insert(key) = key;
  EXPECT_EQ(FlatKeys(map), (std::vector<int64_t>{8, 1, 9, 2, 3, 4, 5, 6, 7}));
}

TEST(IntMap, FlattenIsASnapshot) {
  DepthMap map;
  *map.Insert(1) = 1;
  EXPECT_EQ(map.Flatten(), 1);
  auto* flat = map.flat;
  EXPECT_EQ(map.Flatten(), 0);
  EXPECT_EQ(map.flat, flat);
}

// The spread of a map decides only where keys stand, never what is found.
TEST(IntMap, SpreadOfAddressesAnswersTheSame) {
  OrvIntMap<uint64_t, int32_t> low;
  OrvIntMap<uint64_t, int32_t, OrvAddressBits> spread;
  const uint64_t base = 0x7f0000001000ull;
  for (int32_t i = 0; i < 20000; i++) {
    uint64_t key = base + uint64_t(i) * 104u;
    int foundLow = -1, foundSpread = -1;
    *low.Insert(key, &foundLow) = i;
    *spread.Insert(key, &foundSpread) = i;
    ASSERT_EQ(foundLow, foundSpread);
  }
  for (int32_t i = 0; i < 20000; i += 3) {
    int32_t a = -1, b = -2;
    EXPECT_EQ(low.Remove(base + uint64_t(i) * 104u, &a), 1);
    EXPECT_EQ(spread.Remove(base + uint64_t(i) * 104u, &b), 1);
    EXPECT_EQ(a, b);
  }
  EXPECT_EQ(low.count, spread.count);
  for (int32_t i = -5; i < 20005; i++) {
    uint64_t key = base + uint64_t(int64_t(i)) * 104u;
    int32_t* a = low.Find(key);
    int32_t* b = spread.Find(key);
    ASSERT_EQ(a == nullptr, b == nullptr) << i;
    if (a) EXPECT_EQ(*a, *b);
    if (a) EXPECT_EQ(*a, i);
  }
}
