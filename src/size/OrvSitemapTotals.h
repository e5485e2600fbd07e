#pragma once

#include <cstdint>

#include "size/OrvSitemapSize.h"

// The page count of the files of one read, a parent before its children. An
// index whose children were not all answered stands for the unanswered ones
// with the mean of its answered children's counts, and its range with their
// smallest and largest count for each.
void OrvSitemapTotals(const OrvSitemapFile* files, int32_t count, int64_t& pages, int64_t& low,
                      int64_t& high);
