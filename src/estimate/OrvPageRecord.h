#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"

// Where a crawled URL ended up.
enum ORV_PAGE_STATE : int32_t {
  ORV_PAGE_UNREAD = 0,   // not fetched yet, or its fetch or parse failed
  ORV_PAGE_CONTENT = 1,  // long text at some depth; its links are not followed
  ORV_PAGE_LISTING = 2,  // heads a paged listing; later sightings are not counted
  ORV_PAGE_PLAIN = 3,    // anything else; links followed, sightings counted
};

// One URL on its way through the crawl.
struct OrvPageRecord {
  OrvString url;
  OrvString key;  // parameter-name key of url
  int32_t estimate = 0;
  int32_t sightings = 0;
  int32_t state = ORV_PAGE_UNREAD;
};
