#pragma once

#include <cstdint>

#include "core/OrvChunkArena.h"
#include "core/OrvGrowArray.h"
#include "core/OrvIntMap.h"
#include "core/OrvOwned.h"
#include "core/OrvPtrList.h"
#include "core/OrvShared.h"
#include "nodes/OrvPairSet.h"
#include "orvwebpage/OrvItem.h"

// One item seen by the walk. Its parent link and nodeTest's answer are copied
// in when the record is made, so that later passes need not reach into items
// that a large page has long pushed out of the cache.
struct OrvNodeRecord {
  var_item* item;
  var_item* parent;
  bool visible;
};

// A list of records whose slots belong to the classifier: copied freely and
// never freed one by one. A class handed out by FetchClass is one of these.
struct OrvNodeList {
  OrvNodeRecord** items;
  int32_t count;
  int32_t capacity;
};

// The records of one depth in the order they came, held in pieces of their
// own, so that the passes over a depth read memory in order.
struct OrvLevelPiece {
  OrvLevelPiece* next;
  OrvNodeRecord* records;
  int32_t count;
  int32_t capacity;
};

struct OrvLevel {
  OrvLevelPiece* first;
  OrvLevelPiece* last;  // never empty once the level exists
  int64_t count;

  template <class Visit>
  void ForEach(Visit visit) const {
    for (const OrvLevelPiece* piece = first; piece; piece = piece->next)
      for (int32_t r = 0; r < piece->count; r++) visit(&piece->records[r]);
  }
};

typedef bool (*OrvNodeTest)(var_item* item);

// Sorts the visible items of a page into classes: one per outermost repeated
// block (a parent with two like children), in order of the parent's depth and
// then its place, and last the page class of every visible item.
//
// The walk keeps a pruned copy of the tree in two maps: records by depth
// (`levels`) and by parent item (`children`, key 0 for the top level), holding
// only the items that are visible or lead to one, each once. Records, lists
// and their slots come from this object's arenas and live until Clear, which
// keeps the arenas' memory for the next page.
class OrvVisibleNodeClassifier : public OrvShared {
 public:
  OrvNodeTest nodeTest;
  OrvIntMap<int32_t, OrvLevel*> levels;
  OrvIntMap<uint64_t, OrvNodeList*, OrvAddressBits> children;  // never enumerated
  int32_t minDepth;
  int32_t maxDepth;
  OrvGrowArray<OrvNodeList> classes;  // classes.count is the class count

  OrvVisibleNodeClassifier();
  virtual ~OrvVisibleNodeClassifier();
  OrvVisibleNodeClassifier(const OrvVisibleNodeClassifier&) = delete;
  OrvVisibleNodeClassifier& operator=(const OrvVisibleNodeClassifier&) = delete;

  // The callback of WalkItems; user is the classifier.
  static void OnItem(var_item* item, int32_t depth, void* user);

  // Adds to what is there: a caller going on to another page clears first.
  void Classify(var_item* root);

  void FindBlocks(OrvPtrList& blocks);
  void MakeClasses(OrvPtrList& blocks);
  // parents gets the parent item of each record of level, each once.
  void CollectParents(OrvPtrList& parents, const OrvLevel& level);
  void FindSimilarGroup(OrvPtrList& group, const OrvNodeList& list);
  static bool IsSimilarItem(var_item* a, var_item* b);
  void CollectBlock(OrvNodeList& block, const OrvNodeList& list);
  void CollectBelow(OrvNodeList& block, OrvNodeRecord* record);

  // Drops all records, lists and classes; the maps keep their size and the
  // arenas their memory.
  void Clear();

 private:
  OrvChunkArena<OrvNodeRecord> records;
  OrvChunkArena<OrvNodeList> lists;
  OrvChunkArena<OrvLevel> levelHeads;
  OrvChunkArena<OrvLevelPiece> levelPieces;
  OrvChunkArena<OrvNodeRecord*> slots;
  // Slots a growing list left behind, by capacity: freeSlots[k] chains pieces
  // of 2^k slots through their first slot.
  OrvNodeRecord** freeSlots[32] = {};

  // "Does this list already hold a record of this item" has two answers that
  // agree. While one walk fills empty maps from a tree whose parent links
  // match its shape, a recorded ancestor of the item at hand is always the
  // last record of its lists, since the walk is still inside its subtree:
  // comparing with the last record suffices. Otherwise (a second
  // classification without Clear, a tree with odd parent links, or a walk not
  // started by Classify) every (list, item) pair is kept in a set, built from
  // the lists at the moment the first answer stops holding.
  bool walkInOrder = false;      // the first answer holds for the walk under way
  bool classifyInOrder = false;  // ... and held for the whole walk of Classify
  bool setKept = false;          // `listed` holds every pair of both maps
  OrvPairSet listed;
  OrvPairSet parentsListed;  // the same for the parents list of Classify

  // The item of each depth on the walk's path, to check parent links.
  OrvOwned<var_item*[]> path;
  int64_t pathCapacity = 0;
  var_item* topParent = nullptr;  // the parent link of the walk's top items
  bool topSeen = false;

  // Scratch of FindSimilarGroup, kept between calls.
  struct LikeSlot {
    uint32_t hash;
    int32_t first;  // index of the first record of this kind, -1: empty
    int32_t count;
  };
  OrvOwned<LikeSlot[]> likeSlots;
  uint32_t likeCapacity = 0;
  OrvOwned<int32_t[]> likeOf;  // per record: its slot, or -1 without "class"
  int32_t likeOfCapacity = 0;

  // One frame of CollectBelow: the record whose children are being taken and
  // how far through them it is.
  struct BelowFrame {
    OrvNodeRecord* record;
    OrvNodeList* list;
    int32_t next;
  };
  OrvOwned<BelowFrame[]> frames;
  int32_t frameCapacity = 0;

  // The test whose answers the records carry; once records carry answers of
  // two tests, the test is asked again instead.
  OrvNodeTest recordTest = nullptr;
  bool recordsMade = false;
  bool testsMixed = false;

  // visible is nodeTest's answer for the item.
  OrvNodeRecord* NewRecord(var_item* item, var_item* parent, bool visible);
  OrvNodeRecord* NewRecordAt(int32_t depth, var_item* item, var_item* parent, bool visible);
  void Fill(OrvNodeRecord* record, var_item* item, var_item* parent, bool visible);
  bool IsVisible(const OrvNodeRecord* record) const {
    if (testsMixed || nodeTest != recordTest) return nodeTest(record->item);
    return record->visible;
  }
  OrvNodeList* NewList();
  OrvNodeList* ListUnder(OrvNodeList** slot);
  void Add(OrvNodeList* list, OrvNodeRecord* record);
  void Grow(OrvNodeList* list);
  OrvNodeRecord** TakeSlots(int32_t capacity);
  void Accept(var_item* item, int32_t depth);
  bool FollowsPath(var_item* item, int32_t depth);
  void KeepSet();
  bool Holds(OrvNodeList** list, var_item* item) const;
  bool Holds(OrvLevel** level, var_item* item) const;
  void Append(OrvNodeList* list, OrvNodeRecord* record);
  int32_t FirstWithPartner(const OrvNodeList& list);
  void PushFrame(int32_t& size, OrvNodeRecord* record, OrvNodeList* list);
};
