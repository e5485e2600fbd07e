#include "core/OrvMemory.h"
#include "nodes/OrvVisibleNodeClassifier.h"

namespace {

// The key of a parent in `children`: its address, 0 for the top level.
inline uint64_t ParentKey(const var_item* item) {
  return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(item));
}

// Depths step down one per ancestor; a climb above a root of depth 1 goes on
// to 0, -1 and so on, wrapping rather than overflowing on absurd trees.
inline int32_t Above(int32_t depth) {
  return static_cast<int32_t>(static_cast<uint32_t>(depth) - 1u);
}

}  // namespace

OrvVisibleNodeClassifier::OrvVisibleNodeClassifier()
    : nodeTest(IsVisibleText), minDepth(65535), maxDepth(0) {}

OrvVisibleNodeClassifier::~OrvVisibleNodeClassifier() {
  Clear();
  OrvFreeBytes(likeSlots);
  OrvFreeBytes(likeOf);
  OrvFreeBytes(frames);
}

OrvNodeRecord* OrvVisibleNodeClassifier::NewRecord(int32_t depth, var_item* item) {
  OrvNodeRecord* record = recordPool.Alloc();
  record->depth = depth;
  record->item = item;
  return record;
}

OrvPtrList* OrvVisibleNodeClassifier::ListUnder(OrvPtrList** slot) {
  if (!*slot) {
    OrvPtrList* list = listPool.Alloc();
    list->count = 0;
    *slot = list;
  }
  return *slot;
}

void OrvVisibleNodeClassifier::OnItem(var_item* item, int32_t depth, void* user) {
  static_cast<OrvVisibleNodeClassifier*>(user)->Accept(item, depth);
}

// The walk meets each item once, so the accepted item's own record goes in
// without a search. Its ancestors follow nearest first, each recorded once
// per list. An ancestor that stands both at its depth and under its parent
// has all of its own ancestors recorded in both maps too: they were recorded
// in the call that placed it, and the keys that leave `children` are always
// whole subtrees. So the climb stops there, with nothing above left to change.
// The lists written in one call all differ, so doing the steps ancestor by
// ancestor instead of map by map leaves every list in the same order.
void OrvVisibleNodeClassifier::Accept(var_item* item, int32_t depth) {
  if (!nodeTest(item)) return;
  OrvNodeRecord* record = NewRecord(depth, item);
  OrvPtrList* siblings = ListUnder(children.Insert(ParentKey(item->parent)));
  siblings->Add(record);
  listed.Add(siblings, item);
  OrvPtrList* level = ListUnder(levels.Insert(depth));
  level->Add(record);
  listed.Add(level, item);

  int32_t at = depth;
  for (var_item* ancestor = item->parent; ancestor; ancestor = ancestor->parent) {
    at = Above(at);
    uint64_t key = ParentKey(ancestor->parent);
    OrvPtrList** atLevel = levels.Find(at);
    OrvPtrList** under = children.Find(key);
    bool inLevel = atLevel && listed.Contains(*atLevel, ancestor);
    bool inChildren = under && listed.Contains(*under, ancestor);
    if (inLevel && inChildren) break;
    OrvNodeRecord* chained = NewRecord(at, ancestor);
    if (!inChildren) {
      OrvPtrList* list = ListUnder(children.Insert(key));
      list->Add(chained);
      listed.Add(list, ancestor);
    }
    if (!inLevel) {
      OrvPtrList* list = ListUnder(levels.Insert(at));
      list->Add(chained);
      listed.Add(list, ancestor);
    }
  }

  if (minDepth > depth) minDepth = depth;
  if (maxDepth < depth) maxDepth = depth;
}

void OrvVisibleNodeClassifier::Clear() {
  levels.Clear();
  children.Clear();
  OrvDeleteArray(classes.items);
  classes.items = nullptr;
  classes.count = 0;
  classes.capacity = 0;
  listPool.FreeBlocks();
  recordPool.FreeBlocks();
  listed.Clear();
  parentsListed.Clear();
}
