#include "nodes/OrvVisibleNodeClassifier.h"

#include "core/OrvMemory.h"

OrvVisibleNodeClassifier::OrvVisibleNodeClassifier()
    : nodeTest(IsVisibleText), minDepth(65535), maxDepth(0) {}

OrvVisibleNodeClassifier::~OrvVisibleNodeClassifier() { Clear(); }

void OrvVisibleNodeClassifier::Classify(var_item* root) {
  minDepth = 65535;
  maxDepth = 0;
  walkInOrder = !setKept && levels.count == 0 && children.count == 0;
  topSeen = false;
  WalkItems(root, 1, OnItem, this);
  classifyInOrder = walkInOrder;
  walkInOrder = false;

  OrvPtrList blocks;
  FindBlocks(blocks);
  MakeClasses(blocks);
  parentsListed.Clear();
  classifyInOrder = false;
}

// The blocks in their order, then the page class of every visible item by
// the flat order of the depths; a page without one has no page class.
void OrvVisibleNodeClassifier::MakeClasses(OrvPtrList& blocks) {
  OrvNodeList* made = classes.AddSlots(blocks.count + 1);
  for (int32_t b = 0; b < blocks.count; b++) made[b] = *static_cast<OrvNodeList*>(blocks.items[b]);
  levels.DropFlat();
  levels.Flatten();
  uint32_t entries = levels.flat ? levels.count : 0;
  // Sized once: the page class of a large page is most of its records.
  int64_t most = 0;
  for (uint32_t e = 0; e < entries; e++) most += levels.flat[e]->value->count;
  OrvNodeList* page = &made[blocks.count];
  *page = OrvNodeList{nullptr, 0, 0};
  if (most > 0) {
    if (most > INT32_MAX) most = INT32_MAX;
    page->items = slots.Alloc(size_t(most));
    page->capacity = int32_t(most);
  }
  for (uint32_t e = 0; e < entries; e++)
    levels.flat[e]->value->ForEach([&](OrvNodeRecord* record) {
      if (IsVisible(record)) Add(page, record);
    });
  if (page->count == 0) classes.RemoveSlot(classes.count - 1);
}

void OrvVisibleNodeClassifier::Clear() {
  levels.Clear();
  children.Clear();
  classes.count = 0;
  records.Rewind();
  lists.Rewind();
  levelHeads.Rewind();
  levelPieces.Rewind();
  slots.Rewind();
  for (auto& free : freeSlots) free = nullptr;
  listed.Clear();
  parentsListed.Clear();
  setKept = false;
  recordsMade = false;
  testsMixed = false;
}
