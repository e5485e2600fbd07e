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

void OrvVisibleNodeClassifier::Fill(OrvNodeRecord* record, var_item* item, var_item* parent,
                                    bool visible) {
  if (nodeTest != recordTest) {
    testsMixed = testsMixed || recordsMade;
    recordTest = nodeTest;
  }
  recordsMade = true;
  record->item = item;
  record->parent = parent;
  record->visible = visible;
}

// A record that stands under its parent only.
OrvNodeRecord* OrvVisibleNodeClassifier::NewRecord(var_item* item, var_item* parent, bool visible) {
  OrvNodeRecord* record = records.Alloc(1);
  Fill(record, item, parent, visible);
  return record;
}

// A record that goes last at its depth: it is made there. Pieces start small,
// as most depths of a page hold a handful of records, and double to 512.
OrvNodeRecord* OrvVisibleNodeClassifier::NewRecordAt(int32_t depth, var_item* item,
                                                     var_item* parent, bool visible) {
  OrvLevel*& level = *levels.Insert(depth);
  if (!level) {
    level = levelHeads.Alloc(1);
    *level = OrvLevel{nullptr, nullptr, 0};
  }
  OrvLevelPiece* piece = level->last;
  if (!piece || piece->count == piece->capacity) {
    int32_t capacity = piece ? (piece->capacity < 512 ? piece->capacity * 2 : 512) : 8;
    OrvLevelPiece* fresh = levelPieces.Alloc(1);
    *fresh = OrvLevelPiece{nullptr, records.Alloc(size_t(capacity)), 0, capacity};
    if (piece)
      piece->next = fresh;
    else
      level->first = fresh;
    level->last = piece = fresh;
  }
  OrvNodeRecord* record = &piece->records[piece->count++];
  level->count++;
  Fill(record, item, parent, visible);
  if (setKept) listed.Add(level, item);
  return record;
}

void OrvVisibleNodeClassifier::OnItem(var_item* item, int32_t depth, void* user) {
  static_cast<OrvVisibleNodeClassifier*>(user)->Accept(item, depth);
}

// The walk is preorder, so the last item met one level up is the walk's
// parent of this one; the top items share one parent link.
bool OrvVisibleNodeClassifier::FollowsPath(var_item* item, int32_t depth) {
  if (depth < 1) return false;
  int64_t at = int64_t(depth) - 1;
  if (at >= pathCapacity) {
    int64_t grown = pathCapacity ? pathCapacity * 2 : 256;
    while (grown <= at) grown *= 2;
    OrvReallocOwned(path, size_t(grown));
    pathCapacity = grown;
  }
  if (at == 0) {
    if (!topSeen) {
      topSeen = true;
      topParent = item->parent;
    } else if (item->parent != topParent) {
      return false;
    }
  } else if (item->parent != path[at - 1]) {
    return false;
  }
  path[at] = item;
  return true;
}

void OrvVisibleNodeClassifier::KeepSet() {
  listed.Clear();
  for (uint32_t b = 0; b < levels.bucketCount; b++)
    for (uint32_t e = 0; e < levels.buckets[b].used; e++) {
      const OrvLevel* level = levels.buckets[b].entries[e].value;
      level->ForEach([&](const OrvNodeRecord* record) { listed.Add(level, record->item); });
    }
  for (uint32_t b = 0; b < children.bucketCount; b++)
    for (uint32_t e = 0; e < children.buckets[b].used; e++) {
      const OrvNodeList* list = children.buckets[b].entries[e].value;
      for (int32_t r = 0; r < list->count; r++) listed.Add(list, list->items[r]->item);
    }
  setKept = true;
}

bool OrvVisibleNodeClassifier::Holds(OrvNodeList** list, var_item* item) const {
  if (!list) return false;
  if (setKept) return listed.Contains(*list, item);
  const OrvNodeList* l = *list;
  return l->count > 0 && l->items[l->count - 1]->item == item;
}

bool OrvVisibleNodeClassifier::Holds(OrvLevel** level, var_item* item) const {
  if (!level) return false;
  if (setKept) return listed.Contains(*level, item);
  const OrvLevelPiece* last = (*level)->last;
  return last->records[last->count - 1].item == item;
}

void OrvVisibleNodeClassifier::Append(OrvNodeList* list, OrvNodeRecord* record) {
  Add(list, record);
  if (setKept) listed.Add(list, record->item);
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
  if (walkInOrder && !FollowsPath(item, depth)) walkInOrder = false;
  if (!walkInOrder && !setKept) KeepSet();
  if (!nodeTest(item)) return;
  OrvNodeRecord* record = NewRecordAt(depth, item, item->parent, true);
  Append(ListUnder(children.Insert(ParentKey(record->parent))), record);

  int32_t at = depth;
  for (var_item* ancestor = item->parent; ancestor; ancestor = ancestor->parent) {
    at = Above(at);
    uint64_t key = ParentKey(ancestor->parent);
    bool inLevel = Holds(levels.Find(at), ancestor);
    bool inChildren = Holds(children.Find(key), ancestor);
    if (inLevel && inChildren) break;
    bool visible = nodeTest(ancestor);
    OrvNodeRecord* chained = inLevel ? NewRecord(ancestor, ancestor->parent, visible)
                                     : NewRecordAt(at, ancestor, ancestor->parent, visible);
    if (!inChildren) Append(ListUnder(children.Insert(key)), chained);
  }

  if (minDepth > depth) minDepth = depth;
  if (maxDepth < depth) maxDepth = depth;
}
