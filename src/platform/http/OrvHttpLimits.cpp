#include "orvwebpage/OrvHttpLimits.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

#include "orvwebpage/OrvVersion.h"
#include "platform/http/OrvHostPatterns.h"
#include "platform/http/OrvHttpGate.h"

namespace {

using Clock = std::chrono::steady_clock;

struct LimitState {
  std::mutex lock;
  OrvHttpSettings settings;
  bool hasDeadline = false;
  Clock::time_point deadline;
  bool hasStarted = false;
  Clock::time_point lastStart;  // start slot of the latest admitted request
  OrvString currentUrl;
  OrvHttpProgressFn progress = nullptr;
  void* progressContext = nullptr;
  OrvHostPatterns hosts;
  std::atomic<int64_t> requests{0};
  std::atomic<int64_t> fetches{0};
  std::atomic<int64_t> bytes{0};
};

LimitState& State() {
  static LimitState state;
  return state;
}

int64_t MillisecondsUntil(Clock::time_point when, Clock::time_point now) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(when - now).count();
}

// Called without the lock held, so a callback may read the counters.
void Report(const char* url, int finished) {
  LimitState& s = State();
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

}  // namespace

void OrvHttpLimits::Set(const OrvHttpSettings& settings) {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  s.settings = settings;
  s.settings.userAgent[sizeof(s.settings.userAgent) - 1] = 0;
  s.hasDeadline = settings.deadlineMs > 0;
  if (s.hasDeadline) s.deadline = Clock::now() + std::chrono::milliseconds(settings.deadlineMs);
}

OrvHttpSettings OrvHttpLimits::Get() {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.settings;
}

void OrvHttpLimits::Reset() {
  Set(OrvHttpSettings());
  SetProgress(nullptr, nullptr);
  SetHosts("", 0);
  ResetCounters();
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  s.hasStarted = false;
}

void OrvHttpLimits::ResetCounters() {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  s.requests = 0;
  s.fetches = 0;
  s.bytes = 0;
  s.currentUrl.Clear();
}

int64_t OrvHttpLimits::GetRequests() { return State().requests.load(); }

int64_t OrvHttpLimits::GetFetches() { return State().fetches.load(); }

int64_t OrvHttpLimits::GetBytes() { return State().bytes.load(); }

void OrvHttpLimits::GetCurrentUrl(OrvString& url) {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  url.CopyBuf(s.currentUrl.buf, s.currentUrl.len);
}

int OrvHttpLimits::IsSpent() {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  if (s.settings.maxRequests > 0 && s.requests.load() >= s.settings.maxRequests) return 1;
  return s.hasDeadline && Clock::now() >= s.deadline ? 1 : 0;
}

void OrvHttpLimits::SetProgress(OrvHttpProgressFn progress, void* context) {
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  s.progress = progress;
  s.progressContext = context;
}

int OrvHttpLimits::SetHosts(const char* patterns, long length) {
  OrvHostPatterns parsed;
  if (!parsed.Set(patterns, length)) return 0;
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  s.hosts = parsed;
  return 1;
}

void OrvHttpLimits::GetHosts(OrvString& patterns) {
  LimitState& s = State();
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
  LimitState& s = State();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.hosts.Allows(target.host.buf, target.host.len, target.port);
}

const char* OrvHttpLimits::DefaultUserAgent() { return "OrvWebPage/" ORV_VERSION; }

ORV_HTTP_STATUS OrvHttpAdmit(const char* url, const OrvRequestTarget& target, int firstHop,
                             OrvHttpAdmission& admission) {
  LimitState& s = State();
  Clock::time_point start;
  {
    std::lock_guard<std::mutex> hold(s.lock);
    if (!s.hosts.Allows(target.host.buf, target.host.len, target.port))
      return ORV_HTTP_HOST_REFUSED;
    Clock::time_point now = Clock::now();
    if (s.settings.maxRequests > 0 && s.requests.load() >= s.settings.maxRequests)
      return ORV_HTTP_BUDGET_SPENT;
    if (s.hasDeadline && now >= s.deadline) return ORV_HTTP_BUDGET_SPENT;
    // Each request books its start slot under the lock, so clients on several
    // threads keep the delay between them too.
    start = now;
    if (s.hasStarted && s.settings.delayMs > 0)
      start = std::max(now, s.lastStart + std::chrono::milliseconds(s.settings.delayMs));
    if (s.hasDeadline && start >= s.deadline) return ORV_HTTP_BUDGET_SPENT;
    s.hasStarted = true;
    s.lastStart = start;
    s.requests.fetch_add(1);
    if (firstHop) s.fetches.fetch_add(1);
    s.currentUrl = url;
    admission.settings = s.settings;
  }
  std::this_thread::sleep_until(start);

  admission.connectTimeoutMs = std::max<int64_t>(1, admission.settings.connectTimeoutMs);
  admission.requestTimeoutMs = std::max<int64_t>(1, admission.settings.requestTimeoutMs);
  {
    std::lock_guard<std::mutex> hold(s.lock);
    if (s.hasDeadline) {
      int64_t left = MillisecondsUntil(s.deadline, Clock::now());
      if (left < 1) left = 1;
      admission.connectTimeoutMs = std::min(admission.connectTimeoutMs, left);
      admission.requestTimeoutMs = std::min(admission.requestTimeoutMs, left);
    }
  }
  Report(url, 0);
  return ORV_HTTP_OK;
}

void OrvHttpNoteBytes(int64_t count, const char* url) {
  State().bytes.fetch_add(count);
  Report(url, 0);
}

void OrvHttpNoteFinished(const char* url) { Report(url, 1); }
