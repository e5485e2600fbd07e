#pragma once

#include "core/OrvBlockPool.h"
#include "core/OrvStrMap.h"
#include "links/OrvLinkRecords.h"
#include "links/OrvWebPageLink.h"

// Link records and a map from key text to a list of links. The facade's store
// holds every link and the finished classes; a tree node's store holds that
// node's groups and no link records.
class OrvUrlClassStore {
 public:
  OrvLinkRecords records;
  OrvBlockPool<OrvLinkList> listPool;
  OrvStrMap<OrvLinkList*> classes;

  // Lists before records: the records outlive every list that points to them.
  void Clear() {
    classes.Clear();
    listPool.FreeBlocks();
    records.Clear();
  }

  // Forgets the snapshot of the map's order, so that the next read numbers
  // every class, also those added after an earlier read.
  void DropFlat() { classes.DropFlat(); }
};
