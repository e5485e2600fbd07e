#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "core/OrvIntMap.h"
#include "core/OrvStrMap.h"
#include "support/Cases.h"

namespace {

using IntMap = OrvIntMap<int32_t, int32_t>;
using StrMap = OrvStrMap<uint32_t>;

// A string map seen as an integer map: each number stands for a text whose
// hash ends in the same four bits, so that up to 16 buckets the texts fall,
// move and line up as the numbers do.
struct AlikeMap : StrMap {
  std::map<int32_t, std::string> texts;
  uint32_t next = 0;
  const char* Text(int32_t n) {
    std::string& t = texts[n];
    while (t.empty() || (Hash(t.c_str(), -1) & 15) != (uint32_t(n) & 15))
      t = "k" + std::to_string(next++);
    return t.c_str();
  }
  uint32_t* Insert(int32_t n, int* found) { return StrMap::Insert(Text(n), -1, found); }
  uint32_t* Find(int32_t n) { return StrMap::Find(Text(n), -1); }
  int Remove(int32_t n, uint32_t* old) { return StrMap::Remove(Text(n), -1, old); }
};

// Inserts the keys, valued by position (flattening after the first `snapshot`
// of them), and removes some. Gives the capacities by bucket, the keys in flat
// order, each key's value or -1, the removed values, and then capacities,
// values, count and flat after Clear.
template <class Map, class V>
std::vector<std::vector<int32_t>> Scenario(const std::vector<int32_t>& keys,
                                           const std::vector<int32_t>& removed, size_t snapshot) {
  Map map;
  std::vector<std::vector<int32_t>> out(6);
  for (size_t i = 0; i < keys.size(); i++) {
    int found = 1;
    V* value = map.Insert(keys[i], &found);
    *value = V(i + 1000 * size_t(found));
    if (i + 1 == snapshot) map.Flatten();
  }
  for (int32_t i : removed) {
    V old = 0;
    out[3].push_back(map.Remove(keys[i], &old) ? int32_t(old) : -1);
  }
  auto look = [&](std::vector<int32_t>& capacities, std::vector<int32_t>& values) {
    for (uint32_t b = 0; b < map.bucketCount; b++)
      capacities.push_back(int32_t(map.buckets[b].capacity));
    for (size_t i = 0; i < keys.size(); i++) {
      V* value = map.Find(keys[i]);
      values.push_back(value ? int32_t(*value) : -1);
    }
  };
  look(out[0], out[2]);
  for (uint32_t i = 0; auto* entry = map.FlatEntry(i); i++)
    out[1].push_back(keys[size_t(entry->value)]);
  map.Clear();
  look(out[4], out[5]);
  out[5].insert(out[5].end(), {int32_t(map.count), map.flat != nullptr});
  return out;
}

// Both maps share one table: a bucket is the low bits of the spread, a key that
// meets a full bucket doubles the table from 48 keys on, else the bucket grows
// by a quarter; doubling moves keys from the back and fills each hole with the
// bucket's last key, and so does Remove. Flat is a snapshot that later growth
// leaves readable. Clear keeps the grown table.
TEST(Maps, GrowthDoublingRemovalAndFlatOrder) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/core/maps.tsv", 8, true)) {
    const std::vector<int32_t> keys = Numbers(c[0]), removed = Numbers(c[1]);
    const size_t snapshot = c[4].empty() ? 0 : std::stoul(c[4]);
    std::vector<int32_t> values(keys.size()), none(keys.size() + 2, -1);
    for (size_t i = 0; i < keys.size(); i++) values[i] = int32_t(i);
    for (int32_t i : removed) values[size_t(i)] = -1;
    none.end()[-2] = none.end()[-1] = 0;
    const std::vector<std::vector<int32_t>> want = {Numbers(c[2]), Numbers(c[3]), values,
                                                    removed,       Numbers(c[2]), none};
    EXPECT_EQ((Scenario<IntMap, int32_t>(keys, removed, snapshot)), want) << c[0];
    EXPECT_EQ((Scenario<AlikeMap, uint32_t>(keys, removed, snapshot)), want) << c[0];
  }
}

TEST(StrMap, Keys) {
  StrMap map;
  int found = 7;
  // A NULL key touches nothing, not even the first arrays; Find alone makes them.
  EXPECT_EQ(map.Insert(nullptr, 3, &found), nullptr);
  EXPECT_EQ(map.Find(nullptr, 0), nullptr);
  EXPECT_EQ(map.Remove(nullptr, 0) + found, 7);
  EXPECT_EQ(map.buckets, nullptr);
  EXPECT_EQ(map.Find("x", 1), nullptr);
  EXPECT_EQ(map.keysSize, 1024);
  // The empty key is a key, in bucket 1, read back as NULL and 0.
  uint32_t* empty = map.Insert("abc", 0, &found);
  *empty = 42;
  EXPECT_EQ(map.buckets[1].used + found, 1u);
  EXPECT_EQ(map.Insert("", -1, &found), empty);
  const char* key = "x";
  int32_t len = -1;
  EXPECT_EQ(map.GetAt(0, &key, &len), empty);
  EXPECT_EQ(key == nullptr && len == 0 && found == 1, true);
  // Bytes count exactly: no folding, no NUL stop in a counted key.
  *map.Insert("ab", 2) = 9;
  EXPECT_EQ(map.Find("AB", 2), nullptr);
  EXPECT_EQ(*map.Insert("ab", -1, &found) + found, 10u);
  // Put back after Remove, a key's bytes are stored anew; Clear keeps the buffer.
  const int32_t used = map.keysUsed;
  const char* buffer = map.keys;
  EXPECT_EQ(map.Remove("ab", 2) + map.Remove("ab", 2), 1);
  map.Insert("ab", 2);
  EXPECT_EQ(map.keysUsed, used + 2);
  map.Clear();
  EXPECT_EQ(map.keys, buffer);
  // The key buffer grows by a twentieth and 256 once a key would fill it exactly.
  map.Insert(std::string(1000, 'a').c_str(), 1000);
  map.Insert(std::string(23, 'b').c_str(), 23);
  EXPECT_EQ(map.keysSize, 1024);
  map.Insert("c", 1);
  EXPECT_EQ(map.keysSize, 1024 + 1024 / 20 + 256);
  EXPECT_NE(map.Find(std::string(23, 'b').c_str(), 23), nullptr);
  // A key read back from the table goes in again while that very insert moves the buffer.
  StrMap own;
  const std::string big(1000, 'k');
  own.Insert(big.c_str(), 1000);
  own.GetAt(0, &key, &len);
  own.Insert(key + 1, 999);
  EXPECT_NE(own.Find(big.c_str(), 999), nullptr);
}

TEST(IntMap, WideKeysAndCrowdedBuckets) {
  OrvIntMap<uint64_t, uint32_t> map;
  // A new table finds nothing and allocates nothing.
  EXPECT_EQ(map.Find(3) == nullptr && map.Remove(3) + map.Flatten() == 0 && !map.buckets, true);
  // Keys alike in their low 32 bits share a bucket and stay apart; aligned or
  // hostile keys may crowd far more than 65,535 entries into one bucket.
  const uint32_t n = 65537;
  for (uint32_t i = 0; i < n; i++) *map.Insert(uint64_t(i) << 32) = i;
  EXPECT_EQ(map.buckets[0].used, n);
  EXPECT_EQ(map.Find(uint64_t(n) << 32), nullptr);
  int found = -1;
  EXPECT_EQ(*map.Insert(uint64_t(n - 1) << 32, &found) + found, n);
  map.Flatten();
  for (uint32_t i = 0; i < n; i++) ASSERT_EQ(map.flat[i]->value, i);
}

}  // namespace

namespace {

// Key number i of a kind, as text: "colliding" keys all share one hash.
std::string CrowdedText(const std::string& kind, uint32_t i) {
  if (kind != "colliding") return "key" + std::to_string(i * 2654435761u);
  std::string text;
  for (int b = 0; b < 13; b++) text += (i >> b) & 1 ? "ba" : "Ab";
  return text;
}

template <class Map>
struct Crowded {
  Map map;
  std::vector<int32_t> Run(const std::vector<std::string>& c) {
    const uint32_t n = uint32_t(std::stoul(c[1])), every = uint32_t(std::stoul(c[2]));
    const uint32_t snapshot = c[3].empty() ? 0 : uint32_t(std::stoul(c[3]));
    std::vector<int32_t> out;
    for (int round = 0; round < 2; round++) {
      for (uint32_t i = 0; i < n; i++) {
        *Insert(c[0], i) = i;
        if (i + 1 == snapshot) map.Flatten();
      }
      for (uint32_t i = 0; i < n; i += every) out.push_back(Remove(c[0], i));
      for (uint32_t i = 0; i < n; i += 2) *Insert(c[0], i) += 1u << 20;
      for (uint32_t i = 0; i < n; i++) out.push_back(Find(c[0], i));
      for (uint32_t b = 0; b < map.bucketCount; b++)
        out.push_back(int32_t(map.buckets[b].capacity));
      map.DropFlat();
      for (uint32_t i = 0; auto* entry = map.FlatEntry(i); i++)
        out.push_back(int32_t(entry->value));
      map.Clear();
    }
    return out;
  }
  uint32_t* Insert(const std::string& kind, uint32_t i) {
    if constexpr (std::is_same_v<Map, StrMap>)
      return map.Insert(CrowdedText(kind, i).c_str(), -1);
    else
      return map.Insert(uint64_t(i) << 32);
  }
  int32_t Remove(const std::string& kind, uint32_t i) {
    uint32_t old = 0;
    if constexpr (std::is_same_v<Map, StrMap>)
      return map.Remove(CrowdedText(kind, i).c_str(), -1, &old) ? int32_t(old) : -1;
    else
      return map.Remove(uint64_t(i) << 32, &old) ? int32_t(old) : -1;
  }
  int32_t Find(const std::string& kind, uint32_t i) {
    uint32_t* v;
    if constexpr (std::is_same_v<Map, StrMap>)
      v = map.Find(CrowdedText(kind, i).c_str(), -1);
    else
      v = map.Find(uint64_t(i) << 32);
    return v ? int32_t(*v) : -1;
  }
};

template <class Map>
void CompareIndexed(const std::vector<std::string>& c) {
  Crowded<Map> indexed, plain;
  indexed.map.indexFrom = uint32_t(std::stoul(c[4]));
  plain.map.indexFrom = UINT32_MAX;
  // Crowded keys share one bucket, which is indexed once it is long enough.
  if (c[0] != "ordinary") {
    for (uint32_t i = 0; i < 40; i++) indexed.Insert(c[0], i);
    bool used = false;
    for (uint32_t b = 0; b < indexed.map.bucketCount; b++)
      used |= indexed.map.buckets[b].index != nullptr;
    EXPECT_EQ(used, indexed.map.indexFrom < 40) << c[0];
  }
  indexed.map.Clear();
  EXPECT_EQ(indexed.Run(c), plain.Run(c)) << c[0] << " " << c[1];
}

}  // namespace

// The index only finds entries faster: whatever its threshold, every answer,
// order and capacity is that of the unindexed table, for crowded and spread keys.
TEST(Maps, IndexedBucketsAnswerAsUnindexed) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/core/crowded.tsv", 5)) {
    if (c[0] == "high")
      CompareIndexed<OrvIntMap<uint64_t, uint32_t>>(c);
    else
      CompareIndexed<StrMap>(c);
  }
}
