#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/OrvMemory.h"

// Growable list of plain values (pointers or bytes); all-zero is the empty
// list. It starts at 32 slots and grows by a quarter plus 32, so capacities
// run 32, 72, 122, 184, 262. Readers use items and count directly; code that
// reuses a list sets count to 0 itself and keeps items.
// T is often a pointer to a record; sizeof(T) then sizes an array of pointers.
// NOLINTBEGIN(bugprone-sizeof-expression)
template <class T>
struct OrvList {
  static_assert(std::is_trivially_copyable_v<T>, "OrvList holds plain values");

  T* items = nullptr;
  int32_t count = 0;
  int32_t capacity = 0;

  OrvList() = default;
  OrvList(const OrvList& other) { Assign(other); }
  OrvList& operator=(const OrvList& other) {
    if (this != &other) Assign(other);
    return *this;
  }
  ~OrvList() { OrvFreeBytes(items); }

  void Add(T element) {
    if (!items) {
      items = static_cast<T*>(OrvAllocBytes(32 * sizeof(T)));
      capacity = 32;
      count = 1;
      items[0] = element;
      return;
    }
    if (count >= capacity) {
      int64_t grown = int64_t(capacity) + capacity / 4 + 32;
      if (grown > INT32_MAX) OrvOutOfMemory();
      items = static_cast<T*>(OrvReallocBytes(items, size_t(grown) * sizeof(T)));
      capacity = int32_t(grown);
    }
    items[count++] = element;
  }

  // A copy sized to the other's count plus one, not grown by the rule of Add.
  void Assign(const OrvList& other) {
    if (capacity < other.count) {
      OrvFreeBytes(items);
      capacity = other.count + 1;
      items = static_cast<T*>(OrvAllocBytes(size_t(capacity) * sizeof(T)));
    }
    count = other.count;
    if (count > 0) std::memcpy(items, other.items, size_t(count) * sizeof(T));
  }
};
// NOLINTEND(bugprone-sizeof-expression)

using OrvPtrList = OrvList<void*>;
using OrvByteList = OrvList<uint8_t>;
