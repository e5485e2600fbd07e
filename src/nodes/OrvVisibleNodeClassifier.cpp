#include "nodes/OrvVisibleNodeClassifier.h"

#include <utility>

#include "core/OrvMemory.h"

OrvVisibleNodeClassifier::OrvVisibleNodeClassifier()
    : nodeTest(IsVisibleText), minDepth(65535), maxDepth(0) {}

OrvVisibleNodeClassifier::~OrvVisibleNodeClassifier() {
  Clear();
  OrvFreeBytes(path);
  OrvFreeBytes(likeSlots);
  OrvFreeBytes(likeOf);
  OrvFreeBytes(frames);
}

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
  OrvPtrList* slots = classes.AddSlots(blocks.count + 1);
  for (int32_t b = 0; b < blocks.count; b++) {
    auto* block = static_cast<OrvPtrList*>(blocks.items[b]);
    std::swap(slots[b].items, block->items);
    std::swap(slots[b].capacity, block->capacity);
    slots[b].count = block->count;
    block->count = 0;
  }
  OrvPtrList* page = &slots[blocks.count];
  page->count = 0;
  levels.DropFlat();
  levels.Flatten();
  uint32_t entries = levels.flat ? levels.count : 0;
  for (uint32_t e = 0; e < entries; e++) {
    const OrvPtrList* list = levels.flat[e]->value;
    for (int32_t r = 0; r < list->count; r++) {
      auto* record = static_cast<OrvNodeRecord*>(list->items[r]);
      if (IsVisible(record)) page->Add(record);
    }
  }
  if (page->count == 0) classes.RemoveSlot(classes.count - 1);
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
  setKept = false;
  recordsMade = false;
  testsMixed = false;
}
