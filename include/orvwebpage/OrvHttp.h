#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvString.h"

// Result of OrvHttp::Run. Only ORV_HTTP_OK means a response is there; the
// other values say why not, for callers that care.
enum ORV_HTTP_STATUS : int32_t {
  ORV_HTTP_OK = 0,
  ORV_HTTP_BAD_REQUEST = 1,   // no URL, an embedded NUL, or an unknown method
  ORV_HTTP_NETWORK = 2,       // connect, TLS, protocol or redirect failure
  ORV_HTTP_NOT_2XX = 3,       // the final response was not 2xx
  ORV_HTTP_TIMEOUT = 4,       // the request, its connect or a stalled transfer took too long
  ORV_HTTP_TOO_LARGE = 5,     // the body passed the size cap
  ORV_HTTP_BUDGET_SPENT = 6,  // request budget or run deadline spent; nothing was sent
  ORV_HTTP_HOST_REFUSED =
      7,  // the host is not one OrvHttpLimits::SetHosts allows; nothing was sent
  ORV_HTTP_ROBOTS_REFUSED = 8,  // the site's robots.txt refuses the URL; nothing was sent
  ORV_HTTP_STOPPED = 9,         // OrvHttpLimits::Stop ended the run
};

enum ORV_HTTP_METHOD : int32_t {
  ORV_HTTP_GET = 0,
};

struct OrvHttpSession;

// One HTTP client: any number of consecutive Run calls, each blocking until
// its response has arrived or failed. Limits and counters live in the run of
// the calling thread (see OrvHttpRun and OrvHttpLimits). One object is for one
// thread at a time; different objects may run on different threads.
class ORV_API OrvHttp {
 public:
  OrvHttp();
  ~OrvHttp();
  OrvHttp(const OrvHttp&) = delete;
  OrvHttp& operator=(const OrvHttp&) = delete;

  // GET of url (length bytes, -1 for NUL-terminated), following redirects.
  // Every hop of a redirect chain is a request of its own to the run:
  // counted, spaced by the delay, and refused when the budget, the deadline,
  // the allowed hosts or (when obeyed) robots.txt say so; the chain shares one
  // request timeout. A failure's reason is OrvHttpLimits::GetLastFailure's.
  ORV_HTTP_STATUS Run(char* url, long length, ORV_HTTP_METHOD method);

  // Replaces body with the body of the last response. Gives 1, or 0 with an
  // empty body when the last Run did not give ORV_HTTP_OK.
  int GetBody(OrvString& body);
  // As GetBody, but the body moves instead of being copied: the response
  // keeps none, so a later GetBody gives an empty one until the next Run.
  int TakeBody(OrvString& body);

  // The status code of the last final response, 0 when none came.
  long GetResponseCode() const;

  // Replaces type with the Content-Type header of the last final response, as
  // sent. Gives 1, or 0 with an empty type when none came.
  int GetContentType(OrvString& type);

 private:
  OrvHttpSession* session;
};
