#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

// One URL on its way through the crawl. Its state is an ORV_PAGE_STATE; a
// record not fetched yet is ORV_PAGE_UNREAD too.
struct OrvPageRecord {
  OrvString url;
  OrvString key;  // parameter-name key of url
  int32_t estimate = 0;
  int32_t sightings = 0;
  int32_t state = ORV_PAGE_UNREAD;
  int32_t listing = -1;  // the listing its page heads, in the run's explanation
};
