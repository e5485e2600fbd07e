#pragma once

#include <cstdint>
#include <utility>

#include "core/OrvMemory.h"

// Growth of an array of constructed values, kept as three separate fields so
// that records can name them as their own (params, paramCount, paramCapacity).
// All capacity elements are constructed; those behind count are spare slots
// that keep their old contents.

inline int32_t OrvGrowCapacity(int64_t wanted) {
  if (wanted > INT32_MAX) OrvOutOfMemory();
  return int32_t(wanted);
}

// Old elements are destroyed right after the copy, so they may be moved from.
template <class T>
void OrvGrowResize(T*& items, int32_t count, int32_t newCapacity) {
  T* fresh = OrvNewArray<T>(size_t(newCapacity));
  for (int32_t i = 0; i < count; i++) fresh[i] = std::move(items[i]);
  OrvDeleteArray(items);
  items = fresh;
}

// Grows while one spare slot is still free: capacities run 1, 2, 3, 4, 6, 8,
// 11, 14, 18 from an empty array.
template <class T>
T* OrvGrowAddSlot(T*& items, int32_t& count, int32_t& capacity) {
  if (count + 1 >= capacity) {
    if (!items) {
      capacity = 1;
      items = OrvNewArray<T>(1);
      count = 0;
    } else {
      int32_t grown = OrvGrowCapacity(int64_t(capacity) + capacity / 4 + 1);
      OrvGrowResize(items, count, grown);
      capacity = grown;
    }
  }
  count++;
  return &items[count - 1];
}

template <class T>
T* OrvGrowAddSlots(T*& items, int32_t& count, int32_t& capacity, int32_t n) {
  if (n < 0) n = 0;
  if (int64_t(count) + n >= capacity) {
    if (!items) {
      capacity = OrvGrowCapacity(int64_t(n) + n / 5);
      items = OrvNewArray<T>(size_t(capacity));
      count = 0;
    } else {
      int32_t grown = OrvGrowCapacity(int64_t(capacity) + capacity / 4 + n);
      OrvGrowResize(items, count, grown);
      capacity = grown;
    }
  }
  int32_t at = count;
  count += n;
  return &items[at];
}

// Fills the hole with the last element: order is not kept.
template <class T>
int OrvGrowRemoveSlot(T* items, int32_t& count, int32_t index) {
  if (index < 0 || index >= count) return 0;
  count--;
  if (index != count) items[index] = items[count];
  return 1;
}

// Growable array of values; all-zero is the empty array.
template <class T>
struct OrvGrowArray {
  T* items = nullptr;
  int32_t count = 0;
  int32_t capacity = 0;

  OrvGrowArray() = default;
  OrvGrowArray(const OrvGrowArray&) = delete;
  OrvGrowArray& operator=(const OrvGrowArray&) = delete;
  ~OrvGrowArray() { OrvDeleteArray(items); }

  T* AddSlot() { return OrvGrowAddSlot(items, count, capacity); }
  T* AddSlots(int32_t n) { return OrvGrowAddSlots(items, count, capacity, n); }
  int RemoveSlot(int32_t index) { return OrvGrowRemoveSlot(items, count, index); }
  // Gives the memory back: the array is empty and all-zero again.
  void Release() {
    OrvDeleteArray(items);
    items = nullptr;
    count = 0;
    capacity = 0;
  }
};
