#pragma once

#include <curl/curl.h>

#include <cstdint>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvString.h"
#include "platform/http/OrvRequestTarget.h"

struct OrvHttpRunState;

// How one fetch goes: what the page requests of OrvHttp::Run do, or what
// the run's own robots.txt requests do.
struct OrvFetchPlan {
  int obeyRobots = 1;     // check each hop against its origin's robots.txt, as the settings say
  int countFetch = 1;     // a fetch of OrvHttpLimits::GetFetches
  int maxRedirects = -1;  // -1: the settings' number
  int64_t cutAt = -1;     // above -1: keep the body's first cutAt bytes, not fail
  int noteFailures = 1;   // a failure becomes the run's last failure
};

struct OrvHttpSession {
  CURL* curl = nullptr;
  CURLU* target = nullptr;  // the request in hand, parsed; libcurl sends what it holds
  OrvRequestTarget aim;
  OrvHttpRunState* run = nullptr;  // of the fetch in hand
  OrvString url;                   // NUL-terminated copy of the request in hand
  OrvString body;                  // grows as bytes come; never past maxBody
  int64_t maxBody = 0;
  int cut = 0;  // cut the body at maxBody rather than fail
  int tooLarge = 0;
  int hasBody = 0;
  long responseCode = 0;
  OrvString contentType;  // of the last final response; empty when it named none
  OrvString failure;      // why the last fetch failed; empty when it did not
  int noteFailures = 1;

  ~OrvHttpSession();
};

// GET of the NUL-terminated session.url in run, following redirects; on
// failure session.failure (and, as the plan says, the run's last failure)
// says why.
[[nodiscard]] ORV_HTTP_STATUS OrvSessionFetch(OrvHttpSession& session, OrvHttpRunState& run,
                                              const OrvFetchPlan& plan);
