#pragma once

#include <cstdint>

#include "core/OrvMemory.h"

// One block of a pool: slots below cursor have been given out at least once,
// and the slots given back form a chain through freeNext starting at freeHead.
template <class T>
struct OrvPoolBlock {
  int32_t freeHead;
  int32_t cursor;
  int32_t slots;
  int32_t* freeNext;
  T* items;
  OrvPoolBlock* next;
};

// Typed pool of chained blocks. Elements are constructed with their block and
// destroyed with it; one given out again keeps whatever its last owner left
// in it. The order in which slots go out is part of the behaviour: a slot given
// back goes out before any fresh slot of its block, the last given back first,
// and earlier blocks before later ones.
template <class T>
class OrvBlockPool {
 public:
  OrvPoolBlock<T>* first = nullptr;
  int32_t blockSize = 512;
  int32_t step = 1;  // slots per allocation; only 1 is supported

  OrvBlockPool() = default;
  OrvBlockPool(const OrvBlockPool&) = delete;
  OrvBlockPool& operator=(const OrvBlockPool&) = delete;
  ~OrvBlockPool() { FreeBlocks(); }

  T* Alloc() {
    // Every block before roomHint is full, so starting there hands out the
    // very slot a walk from first would.
    OrvPoolBlock<T>* last = nullptr;
    for (OrvPoolBlock<T>* b = roomHint ? roomHint : first; b; b = b->next) {
      if (b->freeHead >= 0) {
        int32_t i = b->freeHead;
        b->freeHead = b->freeNext[i];
        roomHint = b;
        return &b->items[i];
      }
      if (b->cursor < b->slots) {
        int32_t i = b->cursor;
        b->cursor += 1;
        roomHint = b;
        return &b->items[i];
      }
      last = b;
    }
    OrvPoolBlock<T>* b = MakeBlock();
    if (last)
      last->next = b;
    else
      first = b;
    roomHint = b;
    return &b->items[0];
  }

  void Free(T* element) {
    bool passedHint = false;
    for (OrvPoolBlock<T>* b = first; b; b = b->next) {
      if (b == roomHint) passedHint = true;
      // Compared as addresses: the pointer may belong to no block at all.
      uintptr_t at = reinterpret_cast<uintptr_t>(element);
      uintptr_t start = reinterpret_cast<uintptr_t>(b->items);
      if (at < start || (at - start) % sizeof(T) != 0) continue;
      uintptr_t i = (at - start) / sizeof(T);
      if (i >= uintptr_t(b->slots)) continue;
      b->freeNext[i] = b->freeHead;
      b->freeHead = int32_t(i);
      if (!passedHint) roomHint = b;
      return;
    }
  }

  void Rewind() {
    for (OrvPoolBlock<T>* b = first; b; b = b->next) {
      b->cursor = 0;
      b->freeHead = -1;
    }
    roomHint = first;
  }

  void FreeBlocks() {
    while (first) {
      OrvPoolBlock<T>* b = first;
      first = b->next;
      OrvDeleteArray(b->items);
      OrvFreeBytes(b->freeNext);
      OrvFreeBytes(b);
    }
    roomHint = nullptr;
  }

 private:
  OrvPoolBlock<T>* roomHint = nullptr;

  OrvPoolBlock<T>* MakeBlock() {
    int32_t slots = blockSize < 1 ? 4 : blockSize;
    auto* b = static_cast<OrvPoolBlock<T>*>(OrvAllocBytes(sizeof(OrvPoolBlock<T>)));
    b->freeHead = -1;
    b->next = nullptr;
    b->cursor = 1;  // the caller takes element 0 at once
    b->slots = slots;
    b->freeNext = static_cast<int32_t*>(OrvAllocBytes(sizeof(int32_t) * size_t(slots)));
    b->items = OrvNewArray<T>(size_t(slots));
    return b;
  }
};
