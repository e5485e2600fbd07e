#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/Cases.h"
#include "core/OrvBlockPool.h"
#include "core/OrvGrowArray.h"
#include "core/OrvPtrList.h"
#include "core/OrvTextArena.h"
#include "orvwebpage/OrvString.h"

namespace {

struct Counted {
  static inline int live = 0;
  OrvString text;
  Counted() { live++; }
  ~Counted() { live--; }
};

// Elements live with their blocks and keep what their last owner left in them.
TEST(OrvBlockPool, SlotOrderAndElements) {
  for (const auto& c : Cases("pool-slots.tsv")) {
    EXPECT_EQ(Counted::live, 0);
    OrvBlockPool<Counted> pool, other;
    std::vector<Counted*> given;
    std::string got;
    std::istringstream in(c[0]);
    for (std::string op; in >> op;) {
      const int n = op.size() > 1 ? std::stoi(op.substr(1)) : 1;
      if (op[0] == 'A') {
        Counted* p = nullptr;
        for (int i = 0; i < n; i++) p = pool.Alloc();
        int block = 0;
        for (auto* b = pool.first; b; b = b->next, block++)
          if (p >= b->items && p < b->items + b->slots)
            got += " " + std::to_string(block) + "," + std::to_string(p - b->items);
        if (p->text.len > 0) got += "=" + std::string(p->text.buf);
        p->text = std::to_string(given.size()).c_str();
        given.push_back(p);
      }
      if (op[0] == 'F') pool.Free(given.at(size_t(n)));
      if (op[0] == 'S') pool.blockSize = n;
      if (op == "L") got += " L" + std::to_string(Counted::live);
      if (op == "X") pool.Free(other.Alloc());
      if (op == "R") pool.Rewind();
      if (op == "B") pool.FreeBlocks();
    }
    EXPECT_EQ(got, " " + c[1]) << c[0];
  }
  EXPECT_EQ(Counted::live, 0);
}

// Lists start at 32 and grow by a quarter plus 32; arrays grow while one spare
// slot is left, by a quarter plus one.
TEST(OrvList, Growth) {
  OrvPtrList ptrs;
  OrvByteList bytes;
  OrvGrowArray<OrvString> array;
  std::vector<int32_t> seen[3];
  static char cells[262];
  for (int i = 0; i < 262; i++) {
    ptrs.Add(&cells[i]);
    bytes.Add(uint8_t(i * 7));
    if (i < 15) array.AddSlot()->Format("%d", i);
    const int32_t capacities[] = {ptrs.capacity, bytes.capacity, array.capacity};
    for (int k = 0; k < 3; k++)
      if (seen[k].empty() || seen[k].back() != capacities[k]) seen[k].push_back(capacities[k]);
  }
  EXPECT_EQ(seen[0], (std::vector<int32_t>{32, 72, 122, 184, 262}));
  EXPECT_EQ(seen[1], seen[0]);
  EXPECT_EQ(seen[2], (std::vector<int32_t>{1, 2, 3, 4, 6, 8, 11, 14, 18}));
  for (int i = 0; i < 262; i++) ASSERT_EQ(ptrs.items[i], &cells[i]);
  for (int i = 0; i < 262; i++) ASSERT_EQ(bytes.items[i], uint8_t(i * 7));
  for (int i = 0; i < 15; i++) EXPECT_EQ(std::string(array.items[i].buf), std::to_string(i));
}

// AddSlots(n) and RemoveSlot(n) on an array after some AddSlot calls, and
// Assign of a list of n to one of that capacity.
TEST(OrvGrowArray, SlotsAndAssign) {
  for (const auto& c : Cases("lists.tsv")) {
    const int before = std::stoi(c[1]), n = std::stoi(c[2]);
    OrvGrowArray<int32_t> array;
    OrvList<int32_t> source, target, sized;
    for (int i = 0; i < before; i++) *array.AddSlot() = i, sized.Add(-1);
    for (int i = 0; i < n; i++) source.Add(i);
    int32_t result = 0;
    if (c[0] == "AddSlots") result = int32_t(array.AddSlots(n) - array.items);
    if (c[0] == "RemoveSlot") result = array.RemoveSlot(n);
    sized.count = before - 1;  // a target of exactly that capacity
    if (c[0] == "Assign" && before) target.Assign(sized);
    if (c[0] == "Assign") target.Assign(source);
    auto show = [&](const int32_t* items, int32_t count, int32_t capacity) {
      int32_t sum = 0;
      for (int32_t i = 0; i < count; i++) sum += items[i];
      return std::to_string(result) + " " + std::to_string(count) + " " + std::to_string(capacity) +
             " " + std::to_string(sum);
    };
    EXPECT_EQ(c[0] == "Assign" ? show(target.items, target.count, target.capacity)
                               : show(array.items, array.count, array.capacity),
              c[3])
        << c[0] << " " << before << " " << n;
  }
}

// Copies stay intact while many more are made after them, across chunks.
TEST(OrvTextArena, CopiesStayPutAndIntact) {
  OrvTextArena arena;
  EXPECT_EQ(arena.Copy("abc", 0), nullptr);
  for (size_t length : {size_t(1), size_t(61), size_t(16383), size_t(16384), size_t(65539)}) {
    std::vector<std::pair<std::string, const char*>> copies;
    for (int i = 0; i < 40; i++) {
      const std::string text(length, char('a' + i % 26));
      copies.push_back({text, arena.Copy(text.data(), length)});
      arena.Copy("x", 1);
    }
    for (const auto& [text, copy] : copies) ASSERT_EQ(std::string(copy, length), text) << length;
    arena.FreeAll();
  }
}

}  // namespace
