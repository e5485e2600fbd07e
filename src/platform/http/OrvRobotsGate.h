#pragma once

#include <curl/curl.h>

#include "orvwebpage/OrvHttp.h"
#include "platform/http/OrvRequestTarget.h"

struct OrvHttpRunState;
struct OrvHttpOrigin;

// Finds what the run knows of target's origin, reading its robots.txt first
// when it has not been read. target is also parsed in url. Gives ORV_HTTP_OK
// with origin set and allowed saying whether robots.txt lets the URL through
// (why says how it refuses), or, with why, the status that ended the robots.txt request when the
// budget, the deadline or a stop left it unread (it is read again next time).
ORV_HTTP_STATUS OrvRobotsCheck(OrvHttpRunState& run, const OrvRequestTarget& target, CURLU* url,
                               OrvHttpOrigin*& origin, int& allowed, OrvString& why);
