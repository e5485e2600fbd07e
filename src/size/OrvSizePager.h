#pragma once

// The pager of one page: the pattern its page links share, how the number in
// them runs, and the highest page it leads to. Numbers may sit in a query
// value, a path segment or a file name; a pager may also be a lone "next".

#include "size/OrvSizeLinks.h"

struct OrvSizePager {
  OrvSizeText pattern;  // local part with "{}" for the number
  int64_t step = 1;     // value(page) = offset + step * (page - 1)
  int64_t offset = 1;
  int64_t maxPage = 0;                  // highest page number a link of the pager leads to
  int32_t numbered = 0;                 // links labelled with their page number
  bool hasNext = false;                 // a "next" link among them
  int64_t PageOf(int64_t value) const;  // 0 when value is no page of this pager
  int64_t ValueOf(int64_t page) const { return offset + step * (page - 1); }
};

// The pager among the local parts of a page's links (locals[i] for links[i],
// empty for links not kept). pageLocal is the page's own local part. Gives
// false when no pager shows.
bool OrvFindPager(const OrvSizeList<OrvSizeLink>& links, const OrvSizeList<OrvSizeText>& locals,
                  std::string_view pageLocal, OrvSizePager& pager);
