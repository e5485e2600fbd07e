#include "core/OrvBlockPool.h"
#include "core/OrvChunkArena.h"
#include "core/OrvGrowArray.h"
#include "core/OrvPtrList.h"
#include "core/OrvTextArena.h"
#include "orvwebpage/OrvString.h"
#include "support/Cases.h"

namespace {

struct Counted {
  static inline int live = 0;
  OrvString text;
  Counted() { live++; }
  ~Counted() { live--; }
};

// Slots go out in a fixed order, freed ones first and earlier blocks first.
// Elements live with their blocks and keep what their last owner left in them.
TEST(OrvBlockPool, SlotOrderAndElements) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/core/pool-slots.tsv", 8, true)) {
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
// slot is left, by a quarter plus one. Assign sizes a copy to the count plus one.
TEST(OrvList, Sizes) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/core/lists.tsv", 8, true)) {
    const int before = std::stoi(c[1]), n = std::stoi(c[2]);
    OrvGrowArray<int32_t> array;
    OrvList<int32_t> list, source, target;
    for (int i = 0; i < before; i++) *array.AddSlot() = i, list.Add(i);
    for (int i = 0; i < n; i++) source.Add(i);
    int32_t result = 0;
    if (c[0] == "AddSlots") result = int32_t(array.AddSlots(n) - array.items);
    if (c[0] == "RemoveSlot") result = array.RemoveSlot(n);
    if (c[0] == "Assign") {
      list.count = before - 1;  // a target of exactly that capacity
      if (before) target.Assign(list);
      target.Assign(source);
    }
    const int32_t* items = array.items;
    int32_t count = array.count, capacity = array.capacity, sum = 0;
    if (c[0] == "Add") items = list.items, count = list.count, capacity = list.capacity;
    if (c[0] == "Assign") items = target.items, count = target.count, capacity = target.capacity;
    for (int32_t i = 0; i < count; i++) sum += items[i];
    EXPECT_EQ((std::vector<int32_t>{result, count, capacity, sum}), Numbers(c[3]))
        << c[0] << " " << before << " " << n;
  }
}

// Copies stay intact while many more are made after them, across chunks.
TEST(OrvTextArena, CopiesStayPutAndIntact) {
  OrvTextArena arena;
  EXPECT_EQ(arena.Copy("abc", 0), nullptr);
  std::vector<std::pair<std::string, const char*>> copies;
  for (size_t length : {1, 61, 16383, 16384, 65539})
    for (int i = 0; i < 40; i++) {
      copies.push_back({std::string(length, char('a' + i % 26)), nullptr});
      copies.back().second = arena.Copy(copies.back().first.data(), length);
    }
  for (const auto& [text, copy] : copies) ASSERT_EQ(std::string(copy, text.size()), text);
}

// Pieces of a round never overlap, small and large alike; the next round
// after Rewind starts in the memory the last one started in.
TEST(OrvChunkArena, PiecesApartAndMemoryReused) {
  OrvChunkArena<uint64_t> arena;
  uint64_t* firstPiece = nullptr;
  for (int round = 0; round < 3; round++) {
    std::vector<std::pair<uint64_t*, size_t>> pieces;
    for (size_t n : {1, 7, 8191, 8192, 100000, 3})
      for (int i = 0; i < 20; i++) {
        uint64_t* piece = arena.Alloc(n);
        for (size_t k = 0; k < n; k++) piece[k] = pieces.size();
        pieces.push_back({piece, n});
      }
    for (size_t p = 0; p < pieces.size(); p++)
      for (size_t k = 0; k < pieces[p].second; k++) ASSERT_EQ(pieces[p].first[k], p) << round;
    if (round == 0) firstPiece = pieces[0].first;
    EXPECT_EQ(pieces[0].first, firstPiece) << round;
    arena.Rewind();
  }
}

}  // namespace
