#pragma once

#include <cstdint>

#include "core/OrvPtrList.h"
#include "core/OrvStrMap.h"
#include "core/OrvTextArena.h"
#include "links/OrvWebPageLink.h"

// One distinct text of a level, and the group it joined in the node split
// last (valid while stamp is that split's stamp).
struct OrvLinkKey {
  const char* text;
  int32_t len;
  uint32_t stamp;
  OrvLinkList* group;
};

// The distinct texts of one level, numbered in order of arrival, so that a
// split looks each text up once per node instead of once per link.
class OrvLinkKeys {
 public:
  OrvList<OrvLinkKey> keys;

  uint32_t Id(const char* text, int32_t len, OrvTextArena& arena) {
    int found = 0;
    uint32_t* id = ids.Insert(text ? text : "", len, &found);
    if (!found) {
      *id = uint32_t(keys.count);
      keys.Add(OrvLinkKey{arena.Copy(text, size_t(len)), len, 0, nullptr});
    }
    return *id;
  }

  // For a stamp counter that wrapped to 0: no key may look current.
  void ForgetGroups() {
    for (int32_t i = 0; i < keys.count; i++) keys.items[i].stamp = 0;
  }

  void Clear() {
    ids.Clear();
    keys.count = 0;
  }

 private:
  OrvStrMap<uint32_t> ids;
};
