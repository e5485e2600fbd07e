#pragma once

#include <cstdint>

#include "SiteProfile.h"

// The number of distinct HTML pages reachable from "/" over links of the
// site itself: what a full crawl would find. Documents, scripts, pages that
// answer 404 and other sites do not count.
int64_t CountReachablePages(const SiteProfile& profile);
