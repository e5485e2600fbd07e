#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

// Settings of a run (see OrvHttpRun), shared by every OrvHttp of it. A caller
// such as a command-line tool sets them once, before it starts an analyser
// that makes its own clients, and every request obeys them from then on.
struct OrvHttpSettings {
  int64_t maxRequests = 0;  // requests allowed since the last ResetCounters; 0: no budget
  int64_t deadlineMs = 0;   // whole run, counted from the Set call; 0: none
  int32_t connectTimeoutMs = 10000;
  int32_t requestTimeoutMs = 30000;  // per Run, redirects included
  int32_t delayMs = 0;               // least time between the starts of two requests
  int32_t stallSeconds = 10;         // a transfer slower than stallBytesPerSecond this long ends
  int32_t stallBytesPerSecond = 16;
  int32_t maxRedirects = 10;
  int64_t maxBodyBytes = int64_t(32) << 20;
  char userAgent[256] = {0};  // empty: the library's name and version
  // 1: before the first request to an origin, read its /robots.txt (once a
  // run, counted as a request) and refuse what it disallows for the
  // User-Agent's product token; its Crawl-delay spaces requests there.
  int32_t obeyRobots = 0;
};

// What a progress callback is told.
struct OrvHttpProgress {
  int64_t requests;  // requests started since the last ResetCounters, this one included
  int64_t bytes;     // body bytes received since then
  const char* url;   // the request in hand, NUL-terminated; good during the call only
  int32_t finished;  // 1 once this request has ended
};

// Called on the thread that runs the request, at its start, as bytes come in,
// and at its end. It must not call OrvHttpLimits::SetProgress.
using OrvHttpProgressFn = void (*)(const OrvHttpProgress& progress, void* context);

// Limits and counters of the calling thread's run: the OrvHttpRun bound to
// it, or the process's default run. Every operation is safe from any thread.
class ORV_API OrvHttpLimits {
 public:
  // Replaces the settings. A deadlineMs above 0 starts the run's clock now.
  static void Set(const OrvHttpSettings& settings);
  static OrvHttpSettings Get();
  // Back to the defaults, with zero counters, no progress callback, no
  // robots.txt read and not stopped.
  static void Reset();

  // Starts a new budget: zero requests and bytes, no current URL, no failure
  // and no URL refused by robots.txt.
  static void ResetCounters();
  // Requests sent, each hop of a redirect chain included.
  static int64_t GetRequests();
  // OrvHttp::Run calls that sent a request: a redirect chain is one fetch.
  static int64_t GetFetches();
  static int64_t GetBytes();
  // The URL of the request in hand, or of the last one; empty before any.
  static void GetCurrentUrl(OrvString& url);
  // 1 when the budget or the deadline is spent, so that Run fails at once.
  static int IsSpent();

  static void SetProgress(OrvHttpProgressFn progress, void* context);

  // Confines requests, redirects included, to the hosts that patterns name:
  // "site.test,*.site.test:8080" allows site.test on any port and every host
  // below site.test on port 8080 (not site.test itself). A request to another
  // host fails at once with ORV_HTTP_HOST_REFUSED and is not counted. Empty
  // text allows every host, as after Reset. Gives 0, keeping the hosts in
  // force, when a pattern is malformed.
  static int SetHosts(const char* patterns, long length);
  // The patterns in force, cleaned: lower case, a comma between two.
  static void GetHosts(OrvString& patterns);
  // 1 when a request to url would pass the hosts in force.
  static int AllowsUrl(const char* url, long length);

  // The User-Agent sent when the settings name none.
  static const char* DefaultUserAgent();

  // The last request of the run that failed, with why, in words a user
  // understands ("connection refused", "HTTP 404", "refused by robots.txt",
  // "request budget spent", ...). Gives 0, both empty, when none failed.
  static int GetLastFailure(OrvString& url, OrvString& reason);
  // The URLs robots.txt refused since the last ResetCounters, in order.
  static void GetRobotsRefused(OrvStrArray& urls);
  // The Sitemap lines of the robots.txt of url's origin, read once a run
  // (a counted request) whether or not robots.txt is obeyed. Gives 1 when
  // the origin has a robots.txt file, 0 with no lines otherwise.
  static int GetRobotsSitemaps(const char* url, long length, OrvStrArray& sitemaps);
  // Ends the request in flight and the delay wait at once; every later
  // request fails with ORV_HTTP_STOPPED until Reset. OrvHttpRun::Stop does
  // the same from another thread.
  static void Stop();
};
