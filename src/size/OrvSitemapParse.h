#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"
#include "size/OrvSitemapSource.h"

enum OrvSitemapKind : int32_t {
  ORV_SITEMAP_NONE = 0,  // not a sitemap: see the problem
  ORV_SITEMAP_URLSET = 1,
  ORV_SITEMAP_INDEX = 2,
  ORV_SITEMAP_TEXT = 3,  // one URL a line
};

struct OrvSitemapParseResult {
  OrvSitemapKind kind = ORV_SITEMAP_NONE;
  int32_t locs = 0;     // handed to the callback
  int32_t cut = 0;      // 1 when more locations followed maxLocs
  int32_t broken = 0;   // 1 when the XML broke off after the root
  int32_t tooLong = 0;  // locations skipped for their length
  OrvString problem;    // why it is no sitemap, or the XML error that ended it
};

// Called with each location, trimmed (not NUL-terminated).
using OrvSitemapLocFn = void (*)(const char* loc, int32_t len, void* context);

// Reads an XML sitemap (<urlset> of <url><loc>, or <sitemapindex> of
// <sitemap><loc>, any namespace) with libxml2's streaming reader, without
// network, DTD or entity substitution, or a text sitemap, one URL a line.
// Stops after maxLocs locations.
void OrvParseSitemap(OrvSitemapSource& source, int32_t maxLocs, OrvSitemapLocFn onLoc,
                     void* context, OrvSitemapParseResult& result);
