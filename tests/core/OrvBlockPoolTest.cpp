#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/OrvBlockPool.h"
#include "orvwebpage/OrvString.h"

namespace {

using Slot = std::pair<int, int>;  // block index in the chain, slot index

template <class T>
Slot Locate(const OrvBlockPool<T>& pool, const T* p) {
  int block = 0;
  for (const OrvPoolBlock<T>* b = pool.first; b; b = b->next, block++)
    if (p >= b->items && p < b->items + b->slots) return {block, int(p - b->items)};
  return {-1, -1};
}

// A script of pool operations and the slots the allocations give, in order.
// "A" allocates, "A*n" allocates n times and records only the last,
// "F k" frees what the k-th recorded allocation gave, "X" frees a foreign
// pointer, "R" rewinds, "B" frees all blocks.
struct Script {
  const char* name;
  std::vector<std::string> ops;
  std::vector<Slot> want;
};

TEST(OrvBlockPool, SlotOrder) {
  const std::vector<Script> scripts = {
      {"fresh pool hands out 0, 1, 2", {"A", "A", "A"}, {{0, 0}, {0, 1}, {0, 2}}},
      {"513th allocation opens a second block", {"A*512", "A", "A"}, {{0, 511}, {1, 0}, {1, 1}}},
      {"last freed goes first, then fresh",
       {"A", "A", "A", "F 0", "F 1", "A", "A", "A"},
       {{0, 0}, {0, 1}, {0, 2}, {0, 1}, {0, 0}, {0, 3}}},
      {"freed slot of the first block before the second block",
       {"A", "A*512", "F 0", "A", "A"},
       {{0, 0}, {1, 0}, {0, 0}, {1, 1}}},
      {"freed in second block, then in first: first block wins",
       {"A", "A*512", "A", "F 2", "F 0", "A", "A", "A"},
       {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {1, 2}}},
      {"a full first block is passed over",
       {"A*512", "A", "A*100", "F 1", "A"},
       {{0, 511}, {1, 0}, {1, 100}, {1, 0}}},
      {"foreign pointer changes nothing", {"A", "X", "A"}, {{0, 0}, {0, 1}}},
      {"rewind starts over in the same order",
       {"A", "A*600", "R", "A", "A", "A*511", "A"},
       {{0, 0}, {1, 88}, {0, 0}, {0, 1}, {1, 0}, {1, 1}}},
      {"rewind forgets the free list",
       {"A", "A", "A", "F 1", "R", "A", "A"},
       {{0, 0}, {0, 1}, {0, 2}, {0, 0}, {0, 1}}},
      {"FreeBlocks makes the pool new", {"A*700", "B", "A", "A"}, {{1, 187}, {0, 0}, {0, 1}}},
  };
  for (const auto& s : scripts) {
    OrvBlockPool<OrvString> pool;
    OrvBlockPool<OrvString> other;
    std::vector<OrvString*> given;
    std::vector<Slot> got;
    for (const std::string& op : s.ops) {
      if (op[0] == 'A') {
        int times = op.size() > 1 ? std::stoi(op.substr(2)) : 1;
        OrvString* p = nullptr;
        for (int i = 0; i < times; i++) p = pool.Alloc();
        ASSERT_NE(p, nullptr) << s.name;
        given.push_back(p);
        got.push_back(Locate(pool, p));
      } else if (op[0] == 'F') {
        pool.Free(given.at(std::stoi(op.substr(2))));
      } else if (op == "X") {
        pool.Free(other.Alloc());
        OrvString local;
        pool.Free(&local);
      } else if (op == "R") {
        pool.Rewind();
      } else if (op == "B") {
        pool.FreeBlocks();
        EXPECT_EQ(pool.first, nullptr) << s.name;
      }
    }
    EXPECT_EQ(got, s.want) << s.name;
  }
}

TEST(OrvBlockPool, BlockFieldsAndReuse) {
  OrvBlockPool<OrvString> pool;
  EXPECT_EQ(pool.first, nullptr);
  EXPECT_EQ(pool.blockSize, 512);
  EXPECT_EQ(pool.step, 1);
  OrvString* a = pool.Alloc();
  pool.Alloc();
  ASSERT_NE(pool.first, nullptr);
  EXPECT_EQ(pool.first->cursor, 2);
  EXPECT_EQ(pool.first->slots, 512);
  EXPECT_EQ(pool.first->freeHead, -1);
  EXPECT_EQ(a->len, 0);  // built empty with the block
  *a = "kept across Free and Rewind";
  pool.Free(a);
  EXPECT_EQ(pool.first->freeHead, 0);
  OrvString* again = pool.Alloc();
  EXPECT_EQ(again, a);
  EXPECT_STREQ(again->buf, "kept across Free and Rewind");
  pool.Rewind();
  EXPECT_EQ(pool.first->cursor, 0);
  EXPECT_EQ(pool.Alloc(), a);
  EXPECT_STREQ(a->buf, "kept across Free and Rewind");

  OrvBlockPool<int> tiny;
  tiny.blockSize = 0;  // below 1: blocks of 4
  for (int i = 0; i < 5; i++) tiny.Alloc();
  EXPECT_EQ(tiny.first->slots, 4);
  ASSERT_NE(tiny.first->next, nullptr);
  EXPECT_EQ(tiny.first->next->cursor, 1);
}

struct Counted {
  static inline int live = 0;
  Counted() { live++; }
  ~Counted() { live--; }
};

TEST(OrvBlockPool, ElementsLiveWithTheirBlocks) {
  {
    OrvBlockPool<Counted> pool;
    EXPECT_EQ(Counted::live, 0);  // making a pool allocates nothing
    Counted* c = pool.Alloc();
    EXPECT_EQ(Counted::live, 512);
    pool.Free(c);
    EXPECT_EQ(Counted::live, 512);  // giving back destroys nothing
    for (int i = 0; i < 513; i++) pool.Alloc();
    EXPECT_EQ(Counted::live, 1024);
    pool.FreeBlocks();
    EXPECT_EQ(Counted::live, 0);
    pool.Alloc();
  }
  EXPECT_EQ(Counted::live, 0);  // the destructor frees the blocks
}

}  // namespace
