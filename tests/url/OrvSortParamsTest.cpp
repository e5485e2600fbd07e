#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "UrlTestSupport.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

// The plain quicksort whose moves fix the order among equal names: first
// element as pivot, hole-filling partition, both scans passing over names
// equal to the pivot, private pivot copy, recursion on both sides.
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

// Values tell equal names apart, so the order among them is checked too.
TEST(SortParams, SameOrderAsThePlainQuicksort) {
  struct Case {
    int count;
    int distinctNames;  // names drawn from this many
    int shape;          // 0 random, 1 ascending, 2 descending, 3 organ pipe, 4 descending pairs
  };
  const std::vector<Case> cases = {
      {2, 2, 0},    {5, 2, 0},     {8, 3, 0},   {16, 16, 0},   {23, 4, 0},   {24, 4, 0},
      {40, 40, 0},  {60, 3, 0},    {100, 1, 0}, {100, 100, 2}, {100, 10, 2}, {100, 10, 1},
      {300, 20, 3}, {500, 500, 0}, {500, 7, 0}, {33, 33, 3},   {3000, 0, 4}, {25, 0, 4},
  };
  std::mt19937 random(12345);
  for (const auto& c : cases) {
    for (int round = 0; round < 20; round++) {
      std::vector<int> keys(size_t(c.count));
      if (c.shape != 4)
        for (auto& k : keys) k = int(random() % unsigned(c.distinctNames));
      if (c.shape == 1) std::sort(keys.begin(), keys.end());
      if (c.shape == 2) std::sort(keys.rbegin(), keys.rend());
      if (c.shape == 4)
        for (int i = 0; i < c.count; i++) keys[size_t(i)] = (c.count - 1 - i) / 2;
      if (c.shape == 3)
        for (int i = 0; i < c.count; i++)
          keys[size_t(i)] = std::min(i, c.count - i) % c.distinctNames;
      OrvWebPageUrl mine, reference;
      std::string text = "/p?";
      for (int i = 0; i < c.count; i++)
        text += "n" + std::to_string(keys[size_t(i)]) + "=" + std::to_string(i) + "&";
      mine.url = text.c_str();
      reference.url = text.c_str();
      mine.Parse(1);
      reference.Parse(0);
      ReferenceSort(reference.params, 0, reference.paramCount - 1);
      ASSERT_EQ(Params(mine), Params(reference))
          << c.count << "/" << c.distinctNames << "/" << c.shape;
    }
  }
}

// Any comparison may be handed in; the sort must follow it, not the names.
int32_t ByValueLength(const OrvUrlParam* a, const OrvUrlParam* b) {
  return a->value.len - b->value.len;
}

TEST(SortParams, FollowsTheGivenComparison) {
  OrvWebPageUrl u;
  u.url =
      "/p?a=xxx&b=x&c=xx&d=&e=xxxx&f=x&g=xx&h=xxx&i=&j=x&k=xxxxx&l=xx&m=x&n=xxx"
      "&o=x&p=xx&q=&r=xxx&s=x&t=xxxx&u=x&v=xx&w=xxx&x=x&y=xx&z=";
  u.Parse(0);
  OrvWebPageUrl::SortParams(u.params, 0, u.paramCount - 1, ByValueLength);
  for (int32_t i = 1; i < u.paramCount; i++)
    EXPECT_LE(u.params[i - 1].value.len, u.params[i].value.len) << i;
  // Sorting part of the array leaves the rest alone.
  u.url = "/p?d=1&c=2&b=3&a=4";
  u.Parse(0);
  OrvWebPageUrl::SortParams(u.params, 1, 2, OrvWebPageUrl::CompareParamNames);
  EXPECT_EQ(Params(u), "d=1&b=3&c=2&a=4");
}

// A 1 MiB URL with 100,000 parameters parses in any order of names, with no
// deep recursion. The times are printed for information only.
TEST(SortParams, HundredThousandParameters) {
  const int count = 100000;
  std::mt19937 random(7);
  std::vector<int> order(count);
  for (int i = 0; i < count; i++) order[size_t(i)] = i;
  for (const char* shape : {"ascending", "descending", "random", "random-duplicates",
                            "descending-duplicates", "descending-one-pair"}) {
    std::vector<int> keys = order;
    std::string s = shape;
    if (s == "descending") std::reverse(keys.begin(), keys.end());
    if (s.rfind("random", 0) == 0) std::shuffle(keys.begin(), keys.end(), random);
    if (s == "descending-one-pair") {
      std::reverse(keys.begin(), keys.end());
      keys[1] = keys[0];
    }
    if (s.find("duplicates") != std::string::npos) {
      for (auto& k : keys) k /= 100;  // runs of 100 equal names
    }
    std::string text = "http://h.test/p?";
    char pair[32];
    for (int i = 0; i < count; i++) {
      std::snprintf(pair, sizeof pair, "n%05d=%02d&", keys[size_t(i)], i % 100);
      text += pair;
    }
    text.pop_back();
    text.resize(1 << 20, 'x');  // pads the last value to exactly 1 MiB
    OrvWebPageUrl u;
    u.url.CopyBuf(text.data(), long(text.size()));
    auto start = std::chrono::steady_clock::now();
    u.Parse(1);
    double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    std::printf("[ timing ] Parse(1) of 1 MiB, %d parameters, %s names: %.1f ms\n", u.paramCount,
                shape, ms);
    ASSERT_EQ(u.paramCount, count) << shape;
    for (int32_t i = 1; i < u.paramCount; i++)
      ASSERT_LE(OrvWebPageUrl::CompareParamNames(&u.params[i - 1], &u.params[i]), 0) << shape << i;
    OrvString names;
    OrvWebPageUrl::GetParamNames(names, u);
    EXPECT_EQ(names.len, count * 7 - 1);
  }
}

}  // namespace
