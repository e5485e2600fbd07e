#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

// Called at the start, as bytes come in and at the end of each request.
void Progress(const OrvHttpProgress& progress, void* context) {
  if (progress.finished) ++*static_cast<int*>(context);
}

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  OrvHttpSettings s;     // defaults: connect 10 s, request 30 s, stall 10 s below 16 B/s
  s.maxRequests = 500;   // then Run fails at once with ORV_HTTP_BUDGET_SPENT
  s.deadlineMs = 60000;  // whole run, from this Set; no request outlives it
  s.delayMs = 0;         // between the starts of two requests
  OrvHttpLimits::Set(s);
  OrvHttpLimits::ResetCounters();  // a new budget
  int finished = 0;
  OrvHttpLimits::SetProgress(Progress, &finished);

  OrvWebPageCountEstimate estimator;
  long pages = estimator.EstimateCount(argv[1], -1);
  OrvString last;
  OrvHttpLimits::GetCurrentUrl(last);
  std::printf("%ld pages; %lld requests (%d finished), %lld bytes; last %s\n", pages,
              (long long)OrvHttpLimits::GetRequests(), finished,
              (long long)OrvHttpLimits::GetBytes(), last.buf);
  return 0;
}
