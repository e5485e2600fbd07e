#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/OrvGrowArray.h"
#include "core/OrvPtrList.h"
#include "orvwebpage/OrvString.h"

namespace {

// Capacities seen after each Add, without repeats.
template <class List, class Make>
std::vector<int32_t> CapacitiesOfAdds(List& list, int adds, Make make) {
  std::vector<int32_t> seen;
  for (int i = 0; i < adds; i++) {
    list.Add(make(i));
    if (seen.empty() || seen.back() != list.capacity) seen.push_back(list.capacity);
  }
  return seen;
}

TEST(OrvList, GrowthSequences) {
  const std::vector<int32_t> want = {32, 72, 122, 184, 262};
  OrvPtrList ptrs;
  static char cells[262];
  EXPECT_EQ(CapacitiesOfAdds(ptrs, 262, [](int i) { return static_cast<void*>(&cells[i]); }), want);
  EXPECT_EQ(ptrs.count, 262);
  for (int i = 0; i < 262; i++) ASSERT_EQ(ptrs.items[i], &cells[i]) << i;

  OrvByteList bytes;
  EXPECT_EQ(CapacitiesOfAdds(bytes, 262, [](int i) { return uint8_t(i * 7); }), want);
  for (int i = 0; i < 262; i++) ASSERT_EQ(bytes.items[i], uint8_t(i * 7)) << i;

  // The 33rd and 73rd Add are the ones that grow.
  OrvPtrList edge;
  for (int i = 0; i < 32; i++) edge.Add(nullptr);
  EXPECT_EQ(edge.capacity, 32);
  edge.Add(nullptr);
  EXPECT_EQ(edge.capacity, 72);
  for (int i = 33; i < 72; i++) edge.Add(nullptr);
  EXPECT_EQ(edge.capacity, 72);
  edge.Add(nullptr);
  EXPECT_EQ(edge.capacity, 122);
}

TEST(OrvList, Assign) {
  struct Case {
    int targetCapacity;  // 0: a list without an array
    int sourceCount;
    int wantCapacity;
  };
  const std::vector<Case> cases = {
      {3, 5, 6}, {5, 5, 5}, {32, 5, 32}, {0, 5, 6}, {0, 0, 0}, {3, 0, 3},
  };
  static char cells[8];
  for (const auto& c : cases) {
    OrvPtrList source, target;
    for (int i = 0; i < c.sourceCount; i++) source.Add(&cells[i]);
    if (c.targetCapacity) {
      // Build a target with exactly that capacity through Assign itself.
      OrvPtrList sized;
      for (int i = 0; i < c.targetCapacity - 1; i++) sized.Add(&cells[7]);
      target.Assign(sized);
      ASSERT_EQ(target.capacity, c.targetCapacity);
    }
    target.Assign(source);
    EXPECT_EQ(target.capacity, c.wantCapacity) << c.targetCapacity << "<-" << c.sourceCount;
    EXPECT_EQ(target.count, c.sourceCount);
    if (c.wantCapacity == 0) {
      EXPECT_EQ(target.items, nullptr);
    }
    for (int i = 0; i < c.sourceCount; i++) EXPECT_EQ(target.items[i], &cells[i]);
  }
}

TEST(OrvGrowArray, AddSlotGrowth) {
  OrvGrowArray<OrvString> array;
  std::vector<int32_t> seen;
  for (int i = 0; i < 15; i++) {
    OrvString* slot = array.AddSlot();
    ASSERT_EQ(slot, &array.items[i]);
    slot->Format("%d", i);
    if (seen.empty() || seen.back() != array.capacity) seen.push_back(array.capacity);
    if (i == 1) {
      EXPECT_EQ(array.count, 2);
      EXPECT_EQ(array.capacity, 2);
    }
  }
  EXPECT_EQ(seen, (std::vector<int32_t>{1, 2, 3, 4, 6, 8, 11, 14, 18}));
  for (int i = 0; i < 15; i++) EXPECT_EQ(std::string(array.items[i].buf), std::to_string(i));
}

TEST(OrvGrowArray, AddSlots) {
  struct Case {
    int before;  // AddSlot calls first
    int32_t n;
    int32_t wantCount, wantCapacity, wantIndex;
  };
  const std::vector<Case> cases = {
      {0, 1, 1, 1, 0}, {0, 10, 10, 12, 0}, {0, 0, 0, 0, 0}, {0, -3, 0, 0, 0}, {2, 3, 5, 5, 2},
      {4, 1, 5, 6, 4}, {4, 0, 4, 5, 4},    {5, 0, 5, 6, 5}, {5, -1, 5, 6, 5}, {5, 2, 7, 9, 5},
  };
  for (const auto& c : cases) {
    OrvGrowArray<int> array;
    for (int i = 0; i < c.before; i++) *array.AddSlot() = i;
    int* first = array.AddSlots(c.n);
    EXPECT_EQ(array.count, c.wantCount) << c.before << "+" << c.n;
    EXPECT_EQ(array.capacity, c.wantCapacity) << c.before << "+" << c.n;
    EXPECT_EQ(first - array.items, c.wantIndex) << c.before << "+" << c.n;
    for (int i = 0; i < c.before; i++) EXPECT_EQ(array.items[i], i);
  }
}

TEST(OrvGrowArray, RemoveSlot) {
  struct Case {
    int32_t index;
    int wantResult;
    std::vector<std::string> wantLive;
  };
  const std::vector<Case> cases = {
      {-1, 0, {"a", "b", "c", "d"}}, {4, 0, {"a", "b", "c", "d"}}, {3, 1, {"a", "b", "c"}},
      {0, 1, {"d", "b", "c"}},       {1, 1, {"a", "d", "c"}},
  };
  for (const auto& c : cases) {
    OrvGrowArray<OrvString> array;
    for (const char* t : {"a", "b", "c", "d"}) *array.AddSlot() = t;
    EXPECT_EQ(array.RemoveSlot(c.index), c.wantResult) << c.index;
    std::vector<std::string> live;
    for (int32_t i = 0; i < array.count; i++) live.emplace_back(array.items[i].buf);
    EXPECT_EQ(live, c.wantLive) << c.index;
    // The slot behind count keeps its contents.
    if (c.wantResult) {
      EXPECT_STREQ(array.items[array.count].buf, "d") << c.index;
    }
  }
}

}  // namespace
