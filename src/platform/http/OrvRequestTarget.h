#pragma once

#include <curl/curl.h>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvString.h"

// Where a request goes, read from its URL the way libcurl reads it, so that
// the host judged is the host connected to.
struct OrvRequestTarget {
  OrvString scheme;  // "http" or "https", lower case
  OrvString host;    // as written, an IPv6 address in brackets
  long port = 0;     // the scheme's port when the URL names none
};

// Parses url (NUL-terminated) into handle. Gives ORV_HTTP_OK,
// ORV_HTTP_BAD_REQUEST for text libcurl would not take as a URL, or
// ORV_HTTP_NETWORK for a scheme other than http and https.
[[nodiscard]] ORV_HTTP_STATUS OrvAimRequest(CURLU* handle, const char* url,
                                            OrvRequestTarget& target);
