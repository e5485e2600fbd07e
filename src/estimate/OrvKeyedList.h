#pragma once

#include <cstdint>
#include <new>

#include "core/OrvBlockPool.h"
#include "core/OrvPtrList.h"
#include "core/OrvStrMap.h"
#include "orvwebpage/OrvString.h"

// Clear walks every bucket, and a map grown by one big page keeps its
// buckets; an empty map is skipped so that resetting after each of many
// repeated URLs costs nothing. Clear of an empty map would change nothing.
template <class V>
void OrvClearIfUsed(OrvStrMap<V>& map) {
  if (map.count || map.flat || map.keysUsed) map.Clear();
}

// For a map whose order nothing reads: gives back its arrays too, which
// after a big page are far larger than the next page needs.
template <class V>
void OrvReleaseIfUsed(OrvStrMap<V>& map) {
  if (!(map.count || map.flat || map.keysUsed)) return;
  map.~OrvStrMap<V>();
  new (&map) OrvStrMap<V>();
}

// Compares a listed element with a new record; 0 means they match.
using OrvRecordTest = int (*)(const void* element, const void* record);

// Records of one page grouped by a key text: the records and the lists come
// from pools that are freed whole when the page is done.
template <class T>
struct OrvKeyedList {
  OrvBlockPool<T> records;
  OrvBlockPool<OrvPtrList> lists;
  OrvStrMap<OrvPtrList*> map;

  // Appends the record under the key. With a test, a record that matches one
  // already listed under that key is refused (false) and nothing changes.
  bool Add(const char* key, int32_t length, T* record, OrvRecordTest test = nullptr) {
    int found = 0;
    // An untouched empty key has no text; it is still a key like any other.
    OrvPtrList** slot = map.Insert(key ? key : "", key ? length : 0, &found);
    if (!found) {
      OrvPtrList* list = lists.Alloc();
      list->count = 0;
      // Most keys of a page list one record: a first array of one slot, not
      // the list's usual 32, saves some 250 bytes a key.
      if (!list->items) {
        list->items = static_cast<void**>(OrvAllocBytes(sizeof(void*)));
        list->capacity = 1;
      }
      *slot = list;
      list->Add(record);
      return true;
    }
    OrvPtrList* list = *slot;
    if (test) {
      for (int32_t i = 0; i < list->count; i++)
        if (test(list->items[i], record) == 0) return false;
    }
    list->Add(record);
    return true;
  }

  bool Add(const OrvString& key, T* record, OrvRecordTest test = nullptr) {
    return Add(key.buf, key.len, record, test);
  }

  // Forgets the page: the map keeps its arrays, the pools give theirs back.
  void Reset() {
    OrvClearIfUsed(map);
    lists.FreeBlocks();
    records.FreeBlocks();
  }

  static T* At(const OrvPtrList* list, int32_t i) { return static_cast<T*>(list->items[i]); }
};
