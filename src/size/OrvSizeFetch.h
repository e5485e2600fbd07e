#pragma once

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvString.h"

// One GET through client: 1 with the body, or 0 with the reason in words a
// user understands ("HTTP 404", "timed out", "request budget spent", ...).
int OrvSizeFetch(OrvHttp& client, const char* url, long len, OrvString& body, OrvString& problem,
                 ORV_HTTP_STATUS& status);
