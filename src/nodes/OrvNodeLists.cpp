#include <cstring>

#include "core/OrvMemory.h"
#include "nodes/OrvVisibleNodeClassifier.h"

namespace {

// Most lists of a page hold one to three records, and a list of one (a link
// or a paragraph over its text) is the most common of all; the slots a
// growing list leaves behind go to the next lists.
constexpr int32_t kFirstSlots = 1;

// The free piece class of a capacity: 2^k slots, at most as many as it has.
int32_t FloorLog2(int32_t capacity) {
  int32_t k = 0;
  while (k < 30 && (int32_t(2) << k) <= capacity) k++;
  return k;
}

}  // namespace

OrvNodeList* OrvVisibleNodeClassifier::NewList() {
  OrvNodeList* list = lists.Alloc(1);
  *list = OrvNodeList{nullptr, 0, 0};
  return list;
}

OrvNodeList* OrvVisibleNodeClassifier::ListUnder(OrvNodeList** slot) {
  if (!*slot) *slot = NewList();
  return *slot;
}

// capacity is a power of two.
OrvNodeRecord** OrvVisibleNodeClassifier::TakeSlots(int32_t capacity) {
  OrvNodeRecord**& free = freeSlots[FloorLog2(capacity)];
  if (!free) return slots.Alloc(size_t(capacity));
  OrvNodeRecord** piece = free;
  free = reinterpret_cast<OrvNodeRecord**>(piece[0]);
  return piece;
}

// To the next power of two, with the slots left behind kept for a later list.
void OrvVisibleNodeClassifier::Grow(OrvNodeList* list) {
  if (list->capacity == 0) {
    list->items = TakeSlots(kFirstSlots);
    list->capacity = kFirstSlots;
    return;
  }
  int32_t k = FloorLog2(list->capacity);
  if (k >= 30) OrvOutOfMemory();
  int32_t grown = int32_t(1) << (k + 1);
  OrvNodeRecord** items = TakeSlots(grown);
  // NOLINTNEXTLINE(bugprone-sizeof-expression): sizes an array of pointers
  std::memcpy(items, list->items, sizeof(OrvNodeRecord*) * size_t(list->count));
  OrvNodeRecord**& free = freeSlots[k];
  list->items[0] = reinterpret_cast<OrvNodeRecord*>(free);
  free = list->items;
  list->items = items;
  list->capacity = grown;
}

void OrvVisibleNodeClassifier::Add(OrvNodeList* list, OrvNodeRecord* record) {
  if (list->count == list->capacity) Grow(list);
  list->items[list->count++] = record;
}
