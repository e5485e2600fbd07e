#pragma once

#include <curl/curl.h>

#include <cstdint>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "platform/http/OrvRequestTarget.h"

// The side of a run's limits that clients use: a request asks to be let
// through, and reports what it receives.

struct OrvHttpRunState;
struct OrvHttpOrigin;

struct OrvHttpAdmission {
  OrvHttpSettings settings;  // as they stood when the request was let through
  int64_t connectTimeoutMs;  // the settings' values, cut to what is left of the deadline
  int64_t requestTimeoutMs;
  int deadlineCut = 0;  // the deadline made a timeout shorter
};

// Whether the run's host patterns let target through.
[[nodiscard]] bool OrvHttpHostAllowed(OrvHttpRunState& run, const OrvRequestTarget& target);
// Whether the run's settings ask for robots.txt to be obeyed.
[[nodiscard]] bool OrvHttpObeysRobots(OrvHttpRunState& run);

// Takes one request from the budget and waits out the delay since the
// previous start, and the Crawl-delay of origin (when not NULL); countFetch
// counts a fetch as well. Gives ORV_HTTP_OK, or, taking nothing and with a
// reason, ORV_HTTP_HOST_REFUSED for a host the patterns leave out,
// ORV_HTTP_BUDGET_SPENT when the budget or the deadline is spent or the delay
// would end past the deadline, ORV_HTTP_STOPPED once the run is stopped.
// url is NUL-terminated.
[[nodiscard]] ORV_HTTP_STATUS OrvHttpAdmit(OrvHttpRunState& run, const char* url,
                                           const OrvRequestTarget& target, int countFetch,
                                           OrvHttpOrigin* origin, OrvHttpAdmission& admission,
                                           const char*& reason);

// Body bytes have arrived for url.
void OrvHttpNoteBytes(OrvHttpRunState& run, int64_t count, const char* url);

// The request for url has ended, whatever its outcome.
void OrvHttpNoteFinished(OrvHttpRunState& run, const char* url);

// url failed for reason: the run's last failure from now on.
void OrvHttpNoteFailure(OrvHttpRunState& run, const char* url, const char* reason);

// robots.txt refused url.
void OrvHttpNoteRobotsRefused(OrvHttpRunState& run, const char* url);

// A reason a user understands for a request let through with admission that
// ended with status after libcurl gave code and the server responseCode.
void OrvDescribeFailure(const OrvHttpAdmission& admission, ORV_HTTP_STATUS status, CURLcode code,
                        long responseCode, OrvString& reason);
