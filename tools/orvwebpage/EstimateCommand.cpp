// `orvwebpage estimate URL`: how many pages a site holds, by crawling it.
// The limits go to the HTTP layer, which refuses requests once one is spent,
// so the estimator itself runs unchanged and drains its queue quickly.

#include <strings.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Command.h"
#include "EstimateExplain.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "ProgressLine.h"
#include "RunLimits.h"
#include "RunWatch.h"
#include "ShownText.h"
#include "orvwebpage/OrvExactEstimate.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvHttpRun.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

struct EstimateOptions {
  std::string url;                // of the site in hand
  std::vector<std::string> urls;  // as given, before those of --from
  std::string from;               // a file of URLs, one a line; "-": stdin
  int jobs = 1;                   // sites estimated at once
  bool ignoreRobots = false;
  int64_t maxRequests = kDefaultMaxRequests;  // 0: no budget
  double timeout = 0;                         // seconds per request; 0: the HTTP layer's default
  double deadline = kDefaultDeadlineSeconds;  // seconds for the whole run; 0: none
  int64_t maxMemory = kDefaultMaxMemory;      // bytes the library may hold; 0: no budget
  int32_t delay = 0;                          // milliseconds between requests
  std::string userAgent;                      // empty: the library's own
  std::string hosts;                          // empty: requests may go anywhere
  bool json = false;
  bool explain = false;
};

// The crawl follows every link whose host contains the entry host behind its
// first dot. Gives a warning when that matches far more than the site: an
// empty domain (no dot) matches every host, a single label ("com") most.
// Addresses keep three of their four numbers, so they are left alone.
std::string SiteDomainWarning(const std::string& entry) {
  OrvWebPageUrl url;
  url.url.CopyBuf(entry.data(), long(entry.size()));
  url.Parse(0);
  std::string scheme(url.scheme.buf ? url.scheme.buf : "", size_t(url.scheme.len));
  std::string host(url.host.buf ? url.host.buf : "", size_t(url.host.len));
  if ((strcasecmp(scheme.c_str(), "http") != 0 && strcasecmp(scheme.c_str(), "https") != 0) ||
      host.empty())
    return "";
  OrvString tail;
  OrvUrlFilterExtractor::HostTail(tail, url.host.buf, url.host.len);
  std::string domain(tail.buf ? tail.buf : "", size_t(tail.len));
  if (domain.substr(0, domain.find(':')).find('.') != std::string::npos) return "";

  std::string line = "orvwebpage: warning: ";
  // A www. in front helps only where the host is one label above a top
  // level ("example.com"); elsewhere only --hosts confines the crawl.
  bool www = host[0] != '[' && host.find('.') != std::string::npos &&
             host.find('.') == host.rfind('.') && strncasecmp(host.c_str(), "www.", 4) != 0;
  if (domain.empty())
    line += "the site domain is empty (the entry host " + host +
            " has no dot), so links to every host are followed";
  else
    line += "the site domain \"" + domain + "\" (the entry host behind its first dot) matches " +
            "every host containing it, and links to them are followed";
  size_t at = entry.find("://");
  at = at == std::string::npos ? at : entry.find(host, at + 3);
  line += "; confine requests with --hosts " + host;
  if (www && at != std::string::npos)
    line += ", or start from " + entry.substr(0, at) + "www." + entry.substr(at);
  return line;
}

std::string FormatSeconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", seconds);
  return text;
}

// What one run gave, the explanation only when asked for.
struct EstimateRun {
  long estimate = 0;
  int64_t exact = 0;  // the same sum in 64 bits: where it differs, the estimate wrapped
  int64_t requests = 0;
  int64_t fetches = 0;  // requests that started a fetch: a redirect chain counts once
  int64_t bytes = 0;
  bool spent = false;
  bool interrupted = false;
  std::string reason;  // why the run stopped short ("interrupted", "deadline", ...), or empty
  double seconds = 0;
  Explanation explanation;
  std::vector<std::string> robotsRefused;
};

OrvHttpSettings LimitsOf(const EstimateOptions& o) {
  OrvHttpSettings settings = OrvHttpLimits::Get();
  settings.maxRequests = o.maxRequests;
  if (o.timeout > 0) settings.requestTimeoutMs = Milliseconds(o.timeout);
  settings.deadlineMs = o.deadline > 0 ? Milliseconds(o.deadline) : 0;
  settings.maxHeldBytes = o.maxMemory;
  settings.delayMs = o.delay;
  std::snprintf(settings.userAgent, sizeof settings.userAgent, "%s", o.userAgent.c_str());
  settings.obeyRobots = o.ignoreRobots ? 0 : 1;
  return settings;
}

struct Progress {
  ProgressLine line{STDERR_FILENO};
  OrvWebPageCountEstimate* estimator;
};

// Runs on the estimator's thread, between its requests' bytes.
void ShowProgress(const OrvHttpProgress& p, void* context) {
  auto* progress = static_cast<Progress*>(context);
  bool probing = progress->estimator->GetPhase() == ORV_ESTIMATE_PROBING;
  progress->line.Show(p.requests, p.bytes, p.url ? p.url : "",
                      probing ? "probing a listing" : "crawling");
}

// Ctrl-C cuts every estimate in hand short and starts no other: the handler
// only sets a flag, and a watcher thread stops the estimators and their
// requests in flight, so the estimates made so far are printed.
volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int) { interrupted = 1; }

struct Active {
  OrvWebPageCountEstimate* estimator;
  OrvHttpRun* run;
};
std::mutex activeLock;
std::vector<Active> active;
bool stopping = false;  // under activeLock: the watcher has stopped them all

void StopActive(const Active& a) {
  a.estimator->StopEstimating();
  a.run->Stop();
}

class InterruptWatch {
 public:
  InterruptWatch() {
    interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previous);
    watcher = std::thread([this] {
      while (!done.load()) {
        if (interrupted) {
          std::lock_guard<std::mutex> hold(activeLock);
          stopping = true;
          for (const Active& a : active) StopActive(a);
          return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
  }
  ~InterruptWatch() {
    done = true;
    watcher.join();
    sigaction(SIGINT, &previous, nullptr);
  }

 private:
  struct sigaction previous = {};
  std::atomic<bool> done{false};
  std::thread watcher;
};

// Known to the watcher while it lives.
class ActiveEstimate {
 public:
  ActiveEstimate(OrvWebPageCountEstimate& estimator, OrvHttpRun& run) : me{&estimator, &run} {
    std::lock_guard<std::mutex> hold(activeLock);
    if (stopping) StopActive(me);
    active.push_back(me);
  }
  ~ActiveEstimate() {
    std::lock_guard<std::mutex> hold(activeLock);
    for (size_t i = 0; i < active.size(); i++)
      if (active[i].estimator == me.estimator) active.erase(active.begin() + long(i));
  }

 private:
  Active me;
};

// On the calling thread's run, which it sets up from o.
EstimateRun Estimate(const EstimateOptions& o, bool showProgress, OrvHttpRun& httpRun) {
  OrvWebPageCountEstimate estimator;
  ActiveEstimate known(estimator, httpRun);
  std::unique_ptr<Progress> progress;
  if (showProgress && isatty(STDERR_FILENO)) {
    progress.reset(new Progress{.estimator = &estimator});
    OrvHttpLimits::SetProgress(ShowProgress, progress.get());
  }

  if (!o.hosts.empty()) OrvHttpLimits::SetHosts(o.hosts.data(), long(o.hosts.size()));
  // With --hosts the crawl is confined already.
  std::string warning = o.hosts.empty() ? SiteDomainWarning(o.url) : "";
  if (!warning.empty()) std::cerr << ShownText(warning) << std::endl;

  OrvHttpLimits::ResetCounters();
  auto start = std::chrono::steady_clock::now();
  OrvHttpLimits::Set(LimitsOf(o));  // starts the deadline's clock
  std::string url = o.url;
  EstimateRun run;
  {
    RunWatch watch(start, o.deadline, o.maxMemory, [&] { StopActive({&estimator, &httpRun}); });
    run.estimate = estimator.EstimateCount(url.data(), static_cast<long>(url.size()));
    run.reason = LimitReason(watch.Reason());
  }
  run.exact = OrvExactEstimate(estimator);
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.requests = OrvHttpLimits::GetRequests();
  run.fetches = OrvHttpLimits::GetFetches();
  run.bytes = OrvHttpLimits::GetBytes();
  run.spent = OrvHttpLimits::IsSpent() != 0;
  run.interrupted = interrupted != 0;
  if (run.interrupted) run.reason = "interrupted";

  if (progress) {
    OrvHttpLimits::SetProgress(nullptr, nullptr);
    progress->line.Clear();
  }
  if (o.explain) run.explanation = ReadExplanation(estimator);
  OrvStrArray refused;
  OrvHttpLimits::GetRobotsRefused(refused);
  for (int32_t i = 0; i < refused.count; i++) run.robotsRefused.emplace_back(refused[i]);
  return run;
}

std::string Dump(const nlohmann::ordered_json& doc) {
  return doc.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string RunText(const EstimateOptions& o, const EstimateRun& run) {
  if (o.json) {
    nlohmann::ordered_json out;
    out["url"] = o.url;
    out["estimate"] = run.estimate;
    out["requests"] = run.requests;
    out["seconds"] = run.seconds;
    if (run.exact != run.estimate) out["wrapped"] = true;
    if (!run.reason.empty()) {
      out["partial"] = true;
      out["reason"] = run.reason;
    }
    if (!run.robotsRefused.empty()) out["robots_refused"] = run.robotsRefused;
    if (o.explain) AddExplanation(run.explanation, out);
    return Dump(out);
  }
  std::ostringstream text;
  text << "url:      " << ShownText(o.url) << "\n"
       << "estimate: " << run.estimate << " pages\n"
       << "requests: " << run.requests << " (" << ShortByteCount(run.bytes) << ")\n"
       << "seconds:  " << FormatSeconds(run.seconds) << "\n";
  if (!run.reason.empty()) text << "partial:  " << run.reason << "\n";
  if (o.explain) {
    for (const std::string& url : run.robotsRefused)
      text << "robots.txt refused: " << ShownText(url) << "\n";
    PrintExplanation(run.explanation, text);
  }
  return text.str();
}

// Why nothing could be read, or empty when the run read something. Nothing
// could be read when the estimate is 0 and at most the entry was asked for
// (its redirects included). A read entry page can give 0 as well (a listing
// whose pages hold no crawlable link), but finding that listing's last page
// takes probes, so such a run has fetched more pages.
std::string FailureOf(const EstimateOptions& o, const EstimateRun& run) {
  if (run.interrupted || run.estimate != 0 || run.fetches > 1) return "";
  if (!OrvHttpLimits::AllowsUrl(o.url.data(), long(o.url.size())) && !o.hosts.empty())
    return "its host is not among --hosts";
  // A stop by the watch leaves "stopped" as the last failure.
  if (!run.reason.empty()) return LimitFailure(run.reason);
  return LastFailure(run.spent ? "the deadline or the request budget ran out first"
                               : "no readable page came back");
}

// One site in a run of its own, bound to the calling thread. Gives its
// output, or sets error to why nothing could be read.
std::string EstimateSite(EstimateOptions o, const std::string& url, bool showProgress,
                         std::string& error) {
  o.url = url;
  OrvHttpRun httpRun;
  httpRun.Bind();
  EstimateRun run = Estimate(o, showProgress, httpRun);
  error = FailureOf(o, run);
  if (error.empty() && run.exact != run.estimate)
    std::cerr << "orvwebpage: warning: the estimate wrapped around in its 32-bit arithmetic; "
                 "summed in 64 bits it is " +
                     std::to_string(run.exact) + " pages\n";
  if (error.empty() && !run.interrupted && !run.reason.empty())
    std::cerr << PartialLine(o.url, run.reason, o.maxRequests, o.deadline, o.maxMemory)
              << std::flush;
  if (error.empty()) return RunText(o, run);
  if (!o.json) return "url:      " + ShownText(url) + "\nerror:    " + ShownText(error) + "\n";
  nlohmann::ordered_json out;
  out["url"] = url;
  out["error"] = error;
  return Dump(out);
}

int RunEstimate(EstimateOptions& o) {
  std::vector<std::string> urls = o.urls;
  if (!o.from.empty())
    ForEachInputLine(ReadInput(o.from), [&](std::string_view line) {
      // Blanks around a URL are no part of it; a blank line names no site.
      size_t first = line.find_first_not_of(" \t"), last = line.find_last_not_of(" \t");
      if (first != std::string_view::npos) urls.emplace_back(line.substr(first, last - first + 1));
    });
  if (urls.empty() && o.from.empty()) {
    std::cerr << "orvwebpage: URL is required" << std::endl;  // a usage error, like CLI11's
    return 2;
  }
  if (urls.empty()) throw CommandError("no URL in " + o.from);
  InterruptWatch watch;
  if (urls.size() == 1 && o.from.empty()) {
    std::string error;
    std::string text = EstimateSite(o, urls[0], true, error);
    if (!error.empty()) throw CommandError(urls[0], error, o.json);
    std::cout << text;
    return interrupted ? 130 : 0;
  }

  // Sites are taken in input order by the workers and printed in that order
  // as soon as each one and those before it are done.
  struct Site {
    std::string text, error;
    bool done = false;
  };
  std::vector<Site> sites(urls.size());
  std::mutex lock;
  size_t next = 0, printed = 0;
  bool failed = false;
  auto work = [&] {
    for (;;) {
      size_t i;
      {
        std::lock_guard<std::mutex> hold(lock);
        if (next >= urls.size() || interrupted) return;
        i = next++;
      }
      std::string error;
      std::string text = EstimateSite(o, urls[i], false, error);
      std::lock_guard<std::mutex> hold(lock);
      sites[i].text = std::move(text);
      sites[i].error = std::move(error);
      sites[i].done = true;
      for (; printed < sites.size() && sites[printed].done; printed++) {
        Site& site = sites[printed];
        if (!site.error.empty()) {
          failed = true;
          std::cerr << "orvwebpage: cannot read " << urls[printed] << ": " << site.error
                    << std::endl;
        }
        if (!o.json && printed > 0) std::cout << "\n";
        std::cout << site.text << std::flush;
        site.text.clear();
      }
    }
  };
  size_t workers = std::min(urls.size(), size_t(o.jobs));
  std::vector<std::thread> threads;
  for (size_t i = 1; i < workers; i++) threads.emplace_back(work);
  work();
  for (std::thread& t : threads) t.join();
  return interrupted ? 130 : failed ? 1 : 0;
}

}  // namespace

Command AddEstimateCommand(CLI::App& parent) {
  auto* app = parent.add_subcommand("estimate",
                                    "Estimate how many pages a site holds, crawling it from URL");
  auto o = std::make_shared<EstimateOptions>();
  app->add_option("URL", o->urls, "entry URL of a site; several are estimated one after another");
  app->add_option("--from", o->from, "also read entry URLs from FILE, one a line (- for stdin)")
      ->type_name("FILE");
  app->add_option("--jobs", o->jobs, "estimate N sites at once, each with its own limits")
      ->transform(WholeNumber(1, 256, "N"));
  app->add_flag("--ignore-robots", o->ignoreRobots,
                "do not read robots.txt, nor keep to what it refuses");
  app->add_option("--max-requests", o->maxRequests,
                  "stop making requests after N of them; 0: no budget (default 10000, far more "
                  "than a site of a few thousand pages takes, an end to one that never ends)")
      ->transform(WholeNumber(0, INT64_MAX, "N"));
  app->add_option("--timeout", o->timeout, "seconds one request may take (default 30)")
      ->check(kSeconds);
  AddRunLimitOptions(app, o->deadline, o->maxMemory);
  app->add_option("--delay", o->delay, "milliseconds to wait between requests")
      ->transform(WholeNumber(0, INT32_MAX, "MS"));
  app->add_option("--user-agent", o->userAgent, "User-Agent header to send")->check(kHeaderText);
  app->add_option("--hosts", o->hosts,
                  "only send requests to these hosts: HOST, *.DOMAIN, either with :PORT")
      ->check(kHostPatterns);
  app->add_flag("--json", o->json,
                "print one JSON document a site, one a line: url, estimate, requests, seconds");
  app->add_flag("--explain", o->explain,
                "also print what the estimate is made of: its shapes, and each listing's pager "
                "and probes");
  return {app, [o] { return RunEstimate(*o); }};
}
