#pragma once

#include <cstdint>

#include "core/OrvPtrList.h"

// One recorded link, kept small: a million of them must fit in cache-friendly
// blocks. The texts live in the records' arena; the URL is the trimmed text
// that parsing left. The caller's value and label are stored and handed back,
// never looked into.
struct OrvWebPageLink {
  void* userData;
  const char* url;
  const char* label;
  int32_t urlLen;
  int32_t labelLen;
  // Level 0: the id of the host, whose key depends on the entry domain at
  // classification time; levels 1 to 3: the id of the key itself.
  uint32_t keyIds[4];
};

// Lists at every level of the class tree hold only pointers to the records,
// which stay in the link pool.
using OrvLinkList = OrvList<OrvWebPageLink*>;
