#pragma once

#include <cstdint>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvString.h"

// Adds the values of the Sitemap lines of a robots.txt body to sitemaps, at
// most max of them; gives how many it added.
int32_t OrvReadSitemapLines(const char* body, long len, int32_t max, OrvStrArray& sitemaps);

// The Sitemap lines of the robots.txt of url's origin, fetched with client.
// Gives 1 when robots.txt was read or is absent (HTTP 404 or 410), else 0 with
// problem saying why not. fetches counts the requests it made.
int OrvFetchRobotsSitemaps(OrvHttp& client, const char* url, long len, int32_t max,
                           OrvStrArray& sitemaps, OrvString& problem, int32_t& fetches);
