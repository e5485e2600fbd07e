#include "core/OrvMemory.h"
#include "nodes/OrvVisibleNodeClassifier.h"

namespace {

inline uint64_t ItemKey(const var_item* item) {
  return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(item));
}

}  // namespace

// Parents are examined from the depth below the shallowest visible item down
// to the deepest, outermost first, and a parent that makes a block takes
// everything below it out of the running. Block classes are gathered in lists
// of their own and copied into `classes` in one step by MakeClasses.
void OrvVisibleNodeClassifier::FindBlocks(OrvPtrList& blocks) {
  OrvPtrList parents;
  OrvPtrList group;
  // A parent once examined would only be found again with the same outcome:
  // no list changes during the classification and keys only ever leave
  // `children`. So each depth looks at the parents it adds, and the set that
  // tells them from those taken before lasts the whole search.
  parentsListed.Clear();
  for (int64_t depth = int64_t(minDepth) + 1; depth <= maxDepth; depth++) {
    OrvLevel** level = levels.Find(int32_t(depth));
    if (!level) continue;
    parents.count = 0;
    CollectParents(parents, **level);
    for (int32_t i = 0; i < parents.count; i++) {
      auto* parent = static_cast<var_item*>(parents.items[i]);
      OrvNodeList** found = children.Find(ItemKey(parent));
      if (!found) continue;
      OrvNodeList* list = *found;
      if (list->count < 2) continue;
      FindSimilarGroup(group, *list);
      if (group.count < 2) continue;
      OrvNodeList* block = NewList();
      CollectBlock(*block, *list);
      children.Remove(ItemKey(parent));
      if (block->count > 0) blocks.Add(block);
    }
  }
}

// After a walk in order, each level lists its items in document order and
// parents of different depths differ, so a parent already taken is the last
// one taken. Otherwise parents are matched through `parentsListed`.
void OrvVisibleNodeClassifier::CollectParents(OrvPtrList& parents, const OrvLevel& level) {
  level.ForEach([&](const OrvNodeRecord* record) {
    var_item* parent = record->parent;
    if (classifyInOrder) {
      if (parents.count > 0 && parents.items[parents.count - 1] == parent) return;
    } else if (!parentsListed.Add(&parents, parent)) {
      return;
    }
    parents.Add(parent);
  });
}

void OrvVisibleNodeClassifier::CollectBlock(OrvNodeList& block, const OrvNodeList& list) {
  for (int32_t r = 0; r < list.count; r++) CollectBelow(block, list.items[r]);
}

void OrvVisibleNodeClassifier::PushFrame(int32_t& size, OrvNodeRecord* record, OrvNodeList* list) {
  if (size == frameCapacity) {
    int64_t grown = frameCapacity ? int64_t(frameCapacity) * 2 : 64;
    if (grown > INT32_MAX) OrvOutOfMemory();
    OrvReallocOwned(frames, size_t(grown));
    frameCapacity = int32_t(grown);
  }
  frames[size++] = BelowFrame{record, list, 0};
}

// Document order, parents before their children; a record's key leaves
// `children` once everything below it is taken. The stack holds one frame per
// level of the subtree instead of one call.
void OrvVisibleNodeClassifier::CollectBelow(OrvNodeList& block, OrvNodeRecord* record) {
  OrvNodeList** found = children.Find(ItemKey(record->item));
  if (!found) return;
  int32_t size = 0;
  PushFrame(size, record, *found);
  while (size > 0) {
    BelowFrame& frame = frames[size - 1];
    if (frame.next < frame.list->count) {
      OrvNodeRecord* below = frame.list->items[frame.next++];
      if (IsVisible(below)) Add(&block, below);
      OrvNodeList** more = children.Find(ItemKey(below->item));
      if (more) PushFrame(size, below, *more);
    } else {
      children.Remove(ItemKey(frame.record->item));
      size--;
    }
  }
}
