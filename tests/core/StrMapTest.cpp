#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "core/OrvStrMap.h"

namespace {

using Map = OrvStrMap<uint32_t>;

std::string KeyAt(Map& map, uint32_t i) {
  const char* key = nullptr;
  int32_t len = -1;
  map.GetAt(i, &key, &len);
  return key ? std::string(key, size_t(len)) : std::string();
}

std::vector<std::string> FlatKeys(Map& map) {
  std::vector<std::string> keys;
  for (uint32_t i = 0; i < map.count; i++) keys.push_back(KeyAt(map, i));
  return keys;
}

// Keys "k0", "k1", ... whose hash selects the wanted low bits.
std::vector<std::string> KeysWithHashBits(uint32_t mask, uint32_t bits, size_t n,
                                          const char* prefix = "k") {
  std::vector<std::string> keys;
  for (uint32_t i = 0; keys.size() < n; i++) {
    std::string key = prefix + std::to_string(i);
    if ((Map::Hash(key.c_str(), int32_t(key.size())) & mask) == bits) keys.push_back(key);
  }
  return keys;
}

void InsertAll(Map& map, const std::vector<std::string>& keys) {
  for (const auto& key : keys) {
    int found = -1;
    uint32_t* value = map.Insert(key.c_str(), int32_t(key.size()), &found);
    ASSERT_NE(value, nullptr);
    ASSERT_EQ(found, 0) << key;
    *value = uint32_t(key.size());
  }
}

TEST(StrMap, HashOfKnownKeys) {
  struct Case {
    std::string key;
    uint32_t hash;
  };
  const Case cases[] = {
      {"", 5381u}, {"a", 177670u}, {"ab", 5863240u}, {"ba", 5863208u}, {"\xE4", 177545u},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Map::Hash(c.key.c_str(), int32_t(c.key.size())), c.hash) << c.key;
    EXPECT_EQ(Map::Hash(c.key.c_str(), -1), c.hash) << "measured " << c.key;
  }
  // Long keys wrap around and never set bit 31.
  std::string longKey(1000, '\xFF');
  EXPECT_EQ(Map::Hash(longKey.c_str(), 1000) & 0x80000000u, 0u);
}

TEST(StrMap, NineDigitsComeOutInBucketOrder) {
  Map map;
  std::vector<std::string> keys;
  for (int i = 1; i <= 9; i++) keys.push_back(std::to_string(i));
  InsertAll(map, keys);
  EXPECT_EQ(FlatKeys(map), (std::vector<std::string>{"3", "7", "4", "8", "1", "5", "9", "2", "6"}));
}

TEST(StrMap, DoublesOnlyWhenAKeyMeetsAFullBucketAtTheLimit) {
  Map map;
  for (int i = 1; i <= 62; i++) {
    std::string key = std::to_string(i);
    map.Insert(key.c_str(), -1);
  }
  EXPECT_EQ(map.bucketCount, 4u);
  EXPECT_EQ(map.count, 62u);
  map.Insert("63", -1);
  EXPECT_EQ(map.bucketCount, 8u);
  EXPECT_EQ(map.count, 63u);
  for (int i = 1; i <= 63; i++) {
    std::string key = std::to_string(i);
    EXPECT_NE(map.Find(key.c_str(), -1), nullptr) << key;
  }
}

TEST(StrMap, FullBucketBelowTheLimitGrowsByAQuarter) {
  Map map;
  auto keys = KeysWithHashBits(3, 2, 48);
  const uint32_t capacities[] = {16, 20, 25, 31, 38, 47};
  size_t inserted = 0;
  for (uint32_t capacity : capacities) {
    // Fill up to this capacity; the next key grows the bucket.
    while (inserted < capacity) InsertAll(map, {keys[inserted++]});
    EXPECT_EQ(map.buckets[2].capacity, capacity);
    EXPECT_EQ(map.bucketCount, 4u);
  }
  // Key 48 finds the bucket full at count 48: the table doubles instead.
  InsertAll(map, {keys[inserted]});
  EXPECT_EQ(map.bucketCount, 8u);
}

TEST(StrMap, KeyBufferGrowsByATwentiethWhenExactlyFull) {
  struct Case {
    int32_t first, second, keysSize;
  };
  const Case cases[] = {{1000, 23, 1024}, {1000, 24, 1331}, {1000, 30, 1337}, {0, 0, 1024}};
  for (const auto& c : cases) {
    Map map;
    std::string a(size_t(c.first), 'a'), b(size_t(c.second), 'b');
    map.Insert(a.c_str(), c.first);
    map.Insert(b.c_str(), c.second);
    EXPECT_EQ(map.keysSize, c.keysSize) << c.first << "+" << c.second;
    EXPECT_EQ(map.keysUsed, c.first + c.second);
    // Keys stay readable after the buffer moved.
    EXPECT_NE(map.Find(a.c_str(), c.first), nullptr);
    EXPECT_NE(map.Find(b.c_str(), c.second), nullptr);
  }
  // A key read back from the table may be inserted again as part of a longer
  // key, while that very insert moves the buffer.
  Map map;
  std::string big;
  for (int i = 0; i < 1000; i++) big += char('a' + i % 26);
  map.Insert(big.c_str(), 1000);
  const char* stored = nullptr;
  int32_t storedLen = 0;
  map.GetAt(0, &stored, &storedLen);
  map.Insert(stored, 999);
  map.GetAt(0, &stored, &storedLen);  // read afresh: the buffer has moved
  map.Insert(stored + 1, 999);
  EXPECT_GT(map.keysSize, 2000);
  EXPECT_NE(map.Find(big.c_str(), 999), nullptr);
  EXPECT_NE(map.Find(big.c_str() + 1, 999), nullptr);
  EXPECT_EQ(map.count, 3u);
}

TEST(StrMap, DoublingMovesEntriesFromTheBackAndFillsHoles) {
  // a0..a4 share bucket 0 of 4; a1 and a3 have bit 2 set and so move to bucket 4.
  auto stay = KeysWithHashBits(7, 0, 3, "s");
  auto move = KeysWithHashBits(7, 4, 2, "m");
  std::vector<std::string> a = {stay[0], move[0], stay[1], move[1], stay[2]};
  Map map;
  InsertAll(map, a);
  // Fillers in buckets 2 and 3, then bucket 1 until a key finds it full at the limit.
  InsertAll(map, KeysWithHashBits(3, 2, 16, "x"));
  InsertAll(map, KeysWithHashBits(3, 3, 16, "y"));
  auto ones = KeysWithHashBits(3, 1, 17, "z");
  InsertAll(map, std::vector<std::string>(ones.begin(), ones.begin() + 16));
  EXPECT_EQ(map.bucketCount, 4u);
  InsertAll(map, {ones[16]});
  ASSERT_EQ(map.bucketCount, 8u);

  std::vector<std::string> order;
  for (const auto& key : FlatKeys(map))
    for (const auto& k : a)
      if (key == k) order.push_back(key);
  EXPECT_EQ(order, (std::vector<std::string>{a[0], a[4], a[2], a[3], a[1]}));
  EXPECT_EQ(map.buckets[0].used, 3u);
  EXPECT_EQ(map.buckets[4].used, 2u);
  EXPECT_EQ(map.buckets[4].capacity, 16u);
  for (const auto& k : a) EXPECT_NE(map.Find(k.c_str(), -1), nullptr);
}

TEST(StrMap, RemoveFillsTheHoleWithTheLastEntry) {
  auto keys = KeysWithHashBits(3, 0, 4);
  Map map;
  InsertAll(map, keys);
  uint32_t old = 0;
  EXPECT_EQ(map.Remove(keys[1].c_str(), -1, &old), 1);
  EXPECT_EQ(old, uint32_t(keys[1].size()));
  EXPECT_EQ(map.Remove(keys[1].c_str(), -1), 0);
  EXPECT_EQ(map.count, 3u);
  EXPECT_EQ(FlatKeys(map), (std::vector<std::string>{keys[0], keys[3], keys[2]}));

  // Put back, it stands last, and its bytes are stored anew.
  Map again;
  InsertAll(again, keys);
  int32_t used = again.keysUsed;
  again.Remove(keys[1].c_str(), -1);
  InsertAll(again, {keys[1]});
  EXPECT_EQ(again.keysUsed, used + int32_t(keys[1].size()));
  EXPECT_EQ(FlatKeys(again), (std::vector<std::string>{keys[0], keys[3], keys[2], keys[1]}));
}

TEST(StrMap, ClearKeepsArraysAndDropsTheSnapshot) {
  Map map;
  for (int i = 1; i <= 63; i++) map.Insert(std::to_string(i).c_str(), -1);
  map.Flatten();
  char* keys = map.keys;
  ASSERT_EQ(map.bucketCount, 8u);
  map.Clear();
  EXPECT_EQ(map.bucketCount, 8u);
  EXPECT_EQ(map.flat, nullptr);
  EXPECT_EQ(map.count, 0u);
  EXPECT_EQ(map.keysUsed, 0);
  EXPECT_EQ(map.keys, keys);
  EXPECT_EQ(map.Find("5", -1), nullptr);
  InsertAll(map, {"5", "6"});
  EXPECT_EQ(FlatKeys(map), (std::vector<std::string>{"5", "6"}));
}

TEST(StrMap, EdgeKeys) {
  Map map;
  int found = 7;
  // A NULL key touches nothing, not even the first arrays.
  EXPECT_EQ(map.Insert(nullptr, 3, &found), nullptr);
  EXPECT_EQ(map.Find(nullptr, 0), nullptr);
  EXPECT_EQ(map.Remove(nullptr, 0), 0);
  EXPECT_EQ(found, 7);
  EXPECT_EQ(map.buckets, nullptr);
  EXPECT_EQ(map.count, 0u);
  EXPECT_EQ(map.Flatten(), 0);
  EXPECT_EQ(map.flat, nullptr);

  // Find alone makes the first arrays.
  EXPECT_EQ(map.Find("x", 1), nullptr);
  EXPECT_EQ(map.bucketCount, 4u);
  EXPECT_EQ(map.keysSize, 1024);

  // The empty key is a key, in bucket 1, read back as NULL and 0.
  const char* text = "abc";
  uint32_t* empty = map.Insert(text, 0, &found);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(found, 0);
  *empty = 42;
  EXPECT_EQ(map.buckets[1].used, 1u);
  EXPECT_EQ(map.Insert("", -1, &found), empty);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(*map.Find("zzz", 0), 42u);

  // -1 measures; a present key keeps its value and address.
  uint32_t* ab = map.Insert("ab", 2);
  *ab = 9;
  EXPECT_EQ(map.Insert("ab", -1, &found), ab);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(*ab, 9u);
  // Bytes count exactly, no folding, no NUL stop for counted keys.
  EXPECT_EQ(map.Find("AB", 2), nullptr);
  EXPECT_NE(map.Insert("a\0b", 3), ab);
  EXPECT_EQ(map.count, 3u);

  const char* key = text;
  int32_t len = -1;
  for (uint32_t i = 0; i < map.count; i++) {
    uint32_t* value = map.GetAt(i, &key, &len);
    if (value == empty) {
      EXPECT_EQ(key, nullptr);
      EXPECT_EQ(len, 0);
    }
  }
}

TEST(StrMap, FlatIsASnapshot) {
  Map map;
  auto keys = KeysWithHashBits(3, 0, 40);
  InsertAll(map, std::vector<std::string>(keys.begin(), keys.begin() + 16));
  EXPECT_EQ(map.Flatten(), 1);
  Map::Entry** flat = map.flat;
  // The bucket grows under the snapshot; old entries stay readable through it.
  InsertAll(map, std::vector<std::string>(keys.begin() + 16, keys.end()));
  EXPECT_EQ(map.Flatten(), 0);
  EXPECT_EQ(map.flat, flat);
  for (uint32_t i = 0; i < 16; i++) EXPECT_EQ(KeyAt(map, i), keys[i]);
  EXPECT_EQ(map.GetAt(16), nullptr);
  map.Clear();
  InsertAll(map, {keys[39]});
  EXPECT_EQ(KeyAt(map, 0), keys[39]);
}

// 2-byte blocks "bA" and "AB" hash alike at any position, so 16 blocks give
// 65,536 distinct keys with one hash: they share a bucket however often the
// table doubles.
TEST(StrMap, SixtyFiveThousandKeysInOneBucket) {
  const uint32_t n = 65536;
  std::vector<std::string> keys;
  keys.reserve(n);
  for (uint32_t i = 0; i < n; i++) {
    std::string key;
    for (int bit = 0; bit < 16; bit++) key += (i >> bit & 1) ? "AB" : "bA";
    keys.push_back(key);
  }
  uint32_t hash = Map::Hash(keys[0].c_str(), 32);
  ASSERT_EQ(Map::Hash(keys[n - 1].c_str(), 32), hash);

  auto start = std::chrono::steady_clock::now();
  Map map;
  for (uint32_t i = 0; i < n; i++) {
    int found = -1;
    uint32_t* value = map.Insert(keys[i].c_str(), 32, &found);
    ASSERT_EQ(found, 0) << i;
    *value = i;
  }
  ASSERT_EQ(map.count, n);
  const Map::Bucket& bucket = map.buckets[hash & (map.bucketCount - 1)];
  EXPECT_EQ(bucket.used, n);
  // Never doubled past a single crowded bucket's reach: no key was lost or duplicated.
  std::vector<uint8_t> seen(n, 0);
  for (uint32_t i = 0; i < n; i++) {
    uint32_t* value = map.GetAt(i);
    ASSERT_NE(value, nullptr);
    ASSERT_LT(*value, n);
    EXPECT_EQ(KeyAt(map, i), keys[*value]);
    seen[*value]++;
  }
  for (uint32_t i = 0; i < n; i++) ASSERT_EQ(seen[i], 1) << i;
  EXPECT_EQ(*map.Find(keys[12345].c_str(), 32), 12345u);
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("65,536 keys in one bucket: %.2f s\n", seconds);
}

}  // namespace
