#include "orvwebpage/OrvHttpLimits.h"

#include <algorithm>
#include <cstring>

#include "orvwebpage/OrvMemoryUse.h"
#include "orvwebpage/OrvVersion.h"
#include "platform/http/OrvHttpGate.h"
#include "platform/http/OrvHttpRunState.h"
#include "platform/http/OrvRobotsGate.h"

namespace {

using Clock = OrvHttpClock;

// Crawl-delay beyond this is taken as this: a site cannot stall a crawl for hours.
constexpr int64_t kMaxCrawlDelayMs = 30000;

int64_t MillisecondsUntil(Clock::time_point when, Clock::time_point now) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(when - now).count();
}

// Called without the lock held, so a callback may read the counters.
void Report(OrvHttpRunState& s, const char* url, int finished) {
  OrvHttpProgressFn progress;
  void* context;
  {
    std::lock_guard<std::mutex> hold(s.lock);
    progress = s.progress;
    context = s.progressContext;
  }
  if (!progress) return;
  OrvHttpProgress report{s.requests.load(), s.bytes.load(), url ? url : "", finished};
  progress(report, context);
}

// Why the run takes no more requests; NULL while it does. Caller holds the lock.
const char* SpentReason(OrvHttpRunState& s, Clock::time_point now) {
  if (s.stopped.load()) return "stopped";
  if (s.settings.maxRequests > 0 && s.requests.load() >= s.settings.maxRequests)
    return "request budget spent";
  if (s.hasDeadline && now >= s.deadline) return "deadline passed";
  if (s.settings.maxHeldBytes > 0 && OrvGetHeldBytes() > s.settings.maxHeldBytes)
    return "memory budget spent";
  return nullptr;
}

}  // namespace

void OrvHttpLimits::Set(const OrvHttpSettings& settings) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  s.settings = settings;
  s.settings.userAgent[sizeof(s.settings.userAgent) - 1] = 0;
  s.hasDeadline = settings.deadlineMs > 0;
  if (s.hasDeadline) s.deadline = Clock::now() + std::chrono::milliseconds(settings.deadlineMs);
}

OrvHttpSettings OrvHttpLimits::Get() {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.settings;
}

void OrvHttpLimits::Reset() {
  Set(OrvHttpSettings());
  SetProgress(nullptr, nullptr);
  SetHosts("", 0);
  ResetCounters();
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> reading(s.robotsLock);
  std::lock_guard<std::mutex> hold(s.lock);
  s.hasStarted = false;
  s.stopped = 0;
  s.ForgetOrigins();
}

void OrvHttpLimits::ResetCounters() {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  s.requests = 0;
  s.fetches = 0;
  s.bytes = 0;
  s.currentUrl.Clear();
  s.failedUrl.Clear();
  s.failure.Clear();
  s.robotsRefused.RemoveAll(0);
}

int64_t OrvHttpLimits::GetRequests() { return OrvCurrentRun().requests.load(); }

int64_t OrvHttpLimits::GetFetches() { return OrvCurrentRun().fetches.load(); }

int64_t OrvHttpLimits::GetBytes() { return OrvCurrentRun().bytes.load(); }

void OrvHttpLimits::GetCurrentUrl(OrvString& url) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  url.CopyBuf(s.currentUrl.buf, s.currentUrl.len);
}

int OrvHttpLimits::IsSpent() {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  return SpentReason(s, Clock::now()) ? 1 : 0;
}

void OrvHttpLimits::SetProgress(OrvHttpProgressFn progress, void* context) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  s.progress = progress;
  s.progressContext = context;
}

int OrvHttpLimits::SetHosts(const char* patterns, long length) {
  OrvHostPatterns parsed;
  if (!parsed.Set(patterns, length)) return 0;
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  s.hosts = parsed;
  return 1;
}

void OrvHttpLimits::GetHosts(OrvString& patterns) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  patterns.CopyBuf(s.hosts.Text().buf, s.hosts.Text().len);
}

int OrvHttpLimits::AllowsUrl(const char* url, long length) {
  if (!url) return 0;
  OrvString text(url, length);
  if (text.len < 1 || Orvstrlen(text.buf) != text.len) return 0;
  CURLU* handle = curl_url();
  OrvRequestTarget target;
  ORV_HTTP_STATUS aimed = OrvAimRequest(handle, text.buf, target);
  curl_url_cleanup(handle);
  if (aimed != ORV_HTTP_OK) return 0;
  return OrvHttpHostAllowed(OrvCurrentRun(), target);
}

const char* OrvHttpLimits::DefaultUserAgent() { return "OrvWebPage/" ORV_VERSION; }

int OrvHttpLimits::GetLastFailure(OrvString& url, OrvString& reason) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  url.CopyBuf(s.failedUrl.buf, s.failedUrl.len);
  reason.CopyBuf(s.failure.buf, s.failure.len);
  return s.failure.len > 0 ? 1 : 0;
}

void OrvHttpLimits::GetRobotsRefused(OrvStrArray& urls) {
  OrvHttpRunState& s = OrvCurrentRun();
  std::lock_guard<std::mutex> hold(s.lock);
  urls = s.robotsRefused;
}

int OrvHttpLimits::GetRobotsSitemaps(const char* url, long length, OrvStrArray& sitemaps) {
  sitemaps.RemoveAll(0);
  if (!url) return 0;
  OrvString text(url, length);
  if (text.len < 1 || Orvstrlen(text.buf) != text.len) return 0;
  CURLU* handle = curl_url();
  OrvRequestTarget target;
  ORV_HTTP_STATUS status = OrvAimRequest(handle, text.buf, target);
  curl_url_cleanup(handle);
  OrvHttpRunState& run = OrvCurrentRun();
  if (status != ORV_HTTP_OK || !OrvHttpHostAllowed(run, target)) return 0;
  OrvHttpOrigin* origin = nullptr;
  int allowed = 1;
  OrvString why;
  if (OrvRobotsCheck(run, target, nullptr, origin, allowed, why) != ORV_HTTP_OK) return 0;
  std::lock_guard<std::mutex> reading(run.robotsLock);
  sitemaps = origin->robots.Sitemaps();
  return origin->robotsFound;
}

void OrvHttpLimits::Stop() {
  OrvHttpRunState& s = OrvCurrentRun();
  {
    std::lock_guard<std::mutex> hold(s.lock);
    s.stopped = 1;
  }
  s.wake.notify_all();
}

bool OrvHttpHostAllowed(OrvHttpRunState& s, const OrvRequestTarget& target) {
  std::lock_guard<std::mutex> hold(s.lock);
  return s.hosts.Allows(target.host.buf, target.host.len, target.port);
}

bool OrvHttpObeysRobots(OrvHttpRunState& s) {
  std::lock_guard<std::mutex> hold(s.lock);
  return s.settings.obeyRobots != 0;
}

ORV_HTTP_STATUS OrvHttpAdmit(OrvHttpRunState& s, const char* url, const OrvRequestTarget& target,
                             int countFetch, OrvHttpOrigin* origin, OrvHttpAdmission& admission,
                             const char*& reason) {
  reason = nullptr;
  {
    std::unique_lock<std::mutex> hold(s.lock);
    if (!s.hosts.Allows(target.host.buf, target.host.len, target.port)) {
      reason = "host not allowed";
      return ORV_HTTP_HOST_REFUSED;
    }
    Clock::time_point now = Clock::now();
    if ((reason = SpentReason(s, now)))
      return s.stopped.load() ? ORV_HTTP_STOPPED : ORV_HTTP_BUDGET_SPENT;
    // Each request books its start slot under the lock, so clients on several
    // threads of a run keep the delay between them too.
    Clock::time_point start = now;
    if (s.hasStarted && s.settings.delayMs > 0)
      start = std::max(now, s.lastStart + std::chrono::milliseconds(s.settings.delayMs));
    if (origin && origin->hasStarted) {
      int64_t crawlDelay = std::min(origin->robots.CrawlDelayMs(), kMaxCrawlDelayMs);
      start = std::max(start, origin->lastStart + std::chrono::milliseconds(crawlDelay));
    }
    if (s.hasDeadline && start >= s.deadline) {
      reason = "deadline passed";
      return ORV_HTTP_BUDGET_SPENT;
    }
    s.hasStarted = true;
    s.lastStart = std::max(s.lastStart, start);
    if (origin) origin->hasStarted = true, origin->lastStart = start;
    s.requests.fetch_add(1);
    if (countFetch) s.fetches.fetch_add(1);
    s.currentUrl = url;
    admission.settings = s.settings;
    // A stop ends the wait, and the request with it.
    if (s.wake.wait_until(hold, start, [&s] { return s.stopped.load() != 0; })) {
      s.requests.fetch_sub(1);  // never sent
      if (countFetch) s.fetches.fetch_sub(1);
      reason = "stopped";
      return ORV_HTTP_STOPPED;
    }
  }

  admission.connectTimeoutMs = std::max<int64_t>(1, admission.settings.connectTimeoutMs);
  admission.requestTimeoutMs = std::max<int64_t>(1, admission.settings.requestTimeoutMs);
  {
    std::lock_guard<std::mutex> hold(s.lock);
    if (s.hasDeadline) {
      int64_t left = MillisecondsUntil(s.deadline, Clock::now());
      if (left < 1) left = 1;
      admission.deadlineCut = left < admission.requestTimeoutMs;
      admission.connectTimeoutMs = std::min(admission.connectTimeoutMs, left);
      admission.requestTimeoutMs = std::min(admission.requestTimeoutMs, left);
    }
  }
  Report(s, url, 0);
  return ORV_HTTP_OK;
}

void OrvHttpNoteBytes(OrvHttpRunState& s, int64_t count, const char* url) {
  s.bytes.fetch_add(count);
  Report(s, url, 0);
}

void OrvHttpNoteFinished(OrvHttpRunState& s, const char* url) { Report(s, url, 1); }

void OrvHttpNoteFailure(OrvHttpRunState& s, const char* url, const char* reason) {
  std::lock_guard<std::mutex> hold(s.lock);
  s.failedUrl.CopyBuf(url ? url : "", -1);
  s.failure.CopyBuf(reason ? reason : "failed", -1);
}

void OrvHttpNoteRobotsRefused(OrvHttpRunState& s, const char* url) {
  std::lock_guard<std::mutex> hold(s.lock);
  s.robotsRefused.AddString(url ? url : "", -1);
}
