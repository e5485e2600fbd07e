#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"

// The parts of a URL that decide whether it belongs to a site.
struct OrvSiteOrigin {
  OrvString scheme;  // lower case
  OrvString host;    // lower case, a leading "www." dropped
  int32_t port = 0;  // 0: the scheme's default
};

// Gives 1 and fills origin for an absolute http(s) URL with a host, else 0.
int OrvReadOrigin(const char* url, long len, OrvSiteOrigin& origin);

// 1 when url is on the site of entryUrl: the same host, letter case and a
// leading "www." on either side aside, over http or https, on the entry's port
// (an absent port and the scheme's default one are the same).
int OrvIsOnSite(const char* entryUrl, long entryLen, const char* url, long len);
int OrvIsOnSite(const OrvSiteOrigin& entry, const char* url, long len);

// "scheme://host[:port]" of url as written, host lower case; 0 when url has none.
int OrvOriginText(const char* url, long len, OrvString& origin);
