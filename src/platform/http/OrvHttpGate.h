#pragma once

#include <cstdint>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "platform/http/OrvRequestTarget.h"

// The side of OrvHttpLimits that clients use: a request asks to be let
// through, and reports what it receives.

struct OrvHttpAdmission {
  OrvHttpSettings settings;  // as they stood when the request was let through
  int64_t connectTimeoutMs;  // the settings' values, cut to what is left of the deadline
  int64_t requestTimeoutMs;
};

// Takes one request from the budget and waits out the delay since the
// previous start; firstHop counts a fetch as well. Gives ORV_HTTP_OK, or,
// taking nothing, ORV_HTTP_HOST_REFUSED for a host the patterns leave out and
// ORV_HTTP_BUDGET_SPENT when the budget or the deadline is spent or the delay
// would end past the deadline. url is NUL-terminated.
ORV_HTTP_STATUS OrvHttpAdmit(const char* url, const OrvRequestTarget& target, int firstHop,
                             OrvHttpAdmission& admission);

// Body bytes have arrived for url.
void OrvHttpNoteBytes(int64_t count, const char* url);

// The request for url has ended, whatever its outcome.
void OrvHttpNoteFinished(const char* url);
