#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "UrlTestSupport.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"

namespace {

OrvWebPageUrl Parsed(const std::string& text, uint8_t sort) {
  OrvWebPageUrl u;
  u.url.CopyBuf(text.data(), long(text.size()));
  u.Parse(sort);
  return u;
}

TEST(Url, ParseCases) {
  OrvString names;
  for (const auto& c : ReadCases(ORV_CASES_DIR "/url/parse.tsv")) {
    ASSERT_EQ(c.size(), 10u) << c[0];
    const std::vector<std::string> want(c.begin() + 2, c.begin() + 8);
    OrvWebPageUrl u = Parsed(Unescape(c[0]), c[1] == "1");
    EXPECT_EQ(Fields(u), want) << c[0];
    OrvWebPageUrl::GetParamNames(names, u);
    EXPECT_EQ(Str(names), c[8]) << c[0];
    OrvWebPageUrl copy(u);
    EXPECT_EQ(Fields(copy), want) << c[0];
    EXPECT_GE(copy.paramCapacity, copy.paramCount);
    u.Rebuild();
    EXPECT_EQ(Str(u.url), c[9]) << c[0];
    EXPECT_EQ(u.url.buf[u.url.len], '\0');
  }
}

// One record parses every input, so no field may keep anything of the URL
// before.
TEST(Url, SameFieldsAsTheStepByStepParse) {
  auto inputs = ReadCases(ORV_DATA_DIR "/links.txt");
  for (const auto& c : ReadCases(ORV_CASES_DIR "/url/parse.tsv"))
    inputs.push_back({Unescape(c[0])});
  OrvWebPageUrl reused;
  for (const auto& row : inputs) {
    reused.url.CopyBuf(row[0].data(), long(row[0].size()));
    reused.Parse(0);
    ASSERT_EQ(Fields(reused), ReferenceFields(row[0])) << "[" << row[0] << "]";
  }
}

// The plain quicksort whose moves fix the order among equal names: first
// element as pivot, hole-filling partition, both scans passing over names
// equal to the pivot.
void ReferenceSort(OrvUrlParam* a, int first, int last) {
  if (first >= last) return;
  OrvUrlParam pivot = a[first];
  int i = first, j = last;
  while (i < j) {
    while (i < j && OrvWebPageUrl::CompareParamNames(&a[j], &pivot) >= 0) j--;
    a[i] = a[j];
    while (i < j && OrvWebPageUrl::CompareParamNames(&a[i], &pivot) <= 0) i++;
    a[j] = a[i];
  }
  a[i] = pivot;
  ReferenceSort(a, first, i - 1);
  ReferenceSort(a, i + 1, last);
}

// Names of equal width; values number the parameters, so the order among equal names
// shows.
OrvWebPageUrl Query(const std::vector<int>& names, uint8_t sort) {
  std::string text = "http://h.test/p?";
  for (size_t i = 0; i < names.size(); i++)
    text += "n" + std::to_string(1000000 + names[i]) + "=" + std::to_string(i) + "&";
  return Parsed(text, sort);
}

TEST(SortParams, SameOrderAsThePlainQuicksort) {
  // Shapes: 0 random, 1 ascending, 2 descending, 3 organ pipe, 4 descending
  // pairs.
  const int cases[][3] = {{5, 2, 0},    {23, 4, 0},   {24, 4, 0},   {60, 3, 0}, {500, 500, 0},
                          {100, 10, 1}, {100, 10, 2}, {300, 20, 3}, {25, 1, 4}, {3000, 1, 4}};
  std::mt19937 random(12345);
  for (const auto& [count, distinctNames, shape] : cases) {
    for (int round = 0; round < 10; round++) {
      std::vector<int> names(static_cast<size_t>(count));
      for (int i = 0; i < count; i++)
        names[size_t(i)] = shape == 3   ? std::min(i, count - i) % distinctNames
                           : shape == 4 ? (count - 1 - i) / 2
                                        : int(random() % unsigned(distinctNames));
      if (shape == 1) std::sort(names.begin(), names.end());
      if (shape == 2) std::sort(names.rbegin(), names.rend());
      OrvWebPageUrl mine = Query(names, 1), reference = Query(names, 0);
      ReferenceSort(reference.params, 0, reference.paramCount - 1);
      ASSERT_EQ(Fields(mine), Fields(reference)) << count << " " << shape;
    }
  }
  // Only the given range is sorted.
  OrvWebPageUrl u = Query({3, 2, 1, 0}, 0);
  OrvWebPageUrl::SortParams(u.params, 1, 2, OrvWebPageUrl::CompareParamNames);
  EXPECT_EQ(Fields(u)[5], "n1000003=0&n1000001=2&n1000002=1&n1000000=3");
}

// A 1 MiB URL with 100,000 parameters parses in any order of names, with no
// deep recursion.
TEST(SortParams, HundredThousandParameters) {
  std::mt19937 random(7);
  for (const std::string shape : {"ascending", "descending", "one-pair", "random-runs"}) {
    std::vector<int> names(100000);
    for (int i = 0; i < 100000; i++) names[size_t(i)] = shape == "ascending" ? i : 100000 - i;
    if (shape == "one-pair") names[1] = names[0];  // descending but for one pair
    if (shape == "random-runs") {
      std::shuffle(names.begin(), names.end(), random);
      for (int& k : names) k /= 100;  // runs of 100 equal names
    }
    OrvWebPageUrl u = Query(names, 1);
    ASSERT_EQ(u.paramCount, 100000) << shape;
    for (int32_t i = 1; i < u.paramCount; i++)
      ASSERT_LE(OrvWebPageUrl::CompareParamNames(&u.params[i - 1], &u.params[i]), 0) << shape << i;
  }
}

// One extractor for all rows: each entry host replaces the one before.
TEST(UrlKeys, KeysOfEachLevel) {
  OrvUrlFilterExtractor x;
  OrvString key;
  for (const auto& c : ReadCases(ORV_CASES_DIR "/url/keys.tsv")) {
    ASSERT_EQ(c.size(), 6u) << c[1];
    x.SetEntryHost(OrvString(c[0].data(), long(c[0].size())));
    OrvWebPageUrl url = Parsed(Unescape(c[1]), 1);
    for (uint8_t level = 0; level < 5; level++) {
      if (level < 4) key = "stale";
      x.Extract(level, key, url);  // a level past 3 leaves the key
      EXPECT_EQ(Str(key), c[2 + std::min(level, uint8_t(3))]) << c[1] << " level " << int(level);
    }
  }
  for (const auto& c : ReadCases(ORV_CASES_DIR "/url/ext.tsv")) {
    OrvWebPageUrl url;
    url.ext = Unescape(c[0]).c_str();
    x.Extract(2, key, url);
    EXPECT_EQ(Str(key), c[1]) << c[0];
  }
}

}  // namespace
