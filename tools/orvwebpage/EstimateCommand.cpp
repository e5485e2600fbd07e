// `orvwebpage estimate URL`: how many pages a site holds, by crawling it.
// The limits go to the HTTP layer, which refuses requests once one is spent,
// so the estimator itself runs unchanged and drains its queue quickly.

#include <strings.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "EstimateExplain.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "ProgressLine.h"
#include "RunLimits.h"
#include "RunWatch.h"
#include "ShownText.h"
#include "SiteBatch.h"
#include "orvwebpage/OrvExactEstimate.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

struct EstimateOptions {
  SiteBatch batch;
  std::string url;                            // of the site in hand
  int64_t maxRequests = kDefaultMaxRequests;  // 0: no budget
  CrawlOptions crawl;
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

// On the calling thread's run, which it sets up from o.
EstimateRun Estimate(const EstimateOptions& o, bool showProgress, OrvHttpRun& httpRun) {
  OrvWebPageCountEstimate estimator;
  StopOnInterrupt stop([&estimator] { estimator.StopEstimating(); });
  std::unique_ptr<Progress> progress;
  if (showProgress && isatty(STDERR_FILENO)) {
    progress.reset(new Progress{.estimator = &estimator});
    OrvHttpLimits::SetProgress(ShowProgress, progress.get());
  }

  if (!o.crawl.hosts.empty())
    OrvHttpLimits::SetHosts(o.crawl.hosts.data(), long(o.crawl.hosts.size()));
  // With --hosts the crawl is confined already.
  std::string warning = o.crawl.hosts.empty() ? SiteDomainWarning(o.url) : "";
  if (!warning.empty()) std::cerr << ShownText(warning) << std::endl;

  OrvHttpLimits::ResetCounters();
  auto start = std::chrono::steady_clock::now();
  OrvHttpLimits::Set(CrawlSettings(o.crawl, o.maxRequests));  // starts the deadline's clock
  std::string url = o.url;
  EstimateRun run;
  {
    RunWatch watch(start, o.crawl.deadline, o.crawl.maxMemory, [&] {
      estimator.StopEstimating();
      httpRun.Stop();
    });
    run.estimate = estimator.EstimateCount(url.data(), static_cast<long>(url.size()));
    run.reason = LimitReason(watch.Reason());
  }
  run.exact = OrvExactEstimate(estimator);
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.requests = OrvHttpLimits::GetRequests();
  run.fetches = OrvHttpLimits::GetFetches();
  run.bytes = OrvHttpLimits::GetBytes();
  run.spent = OrvHttpLimits::IsSpent() != 0;
  run.interrupted = SiteBatchInterrupted();
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

std::string RunText(const EstimateOptions& o, const EstimateRun& run) {
  if (o.batch.json) {
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
    return JsonText(out, kOneLine);
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
  if (!OrvHttpLimits::AllowsUrl(o.url.data(), long(o.url.size())) && !o.crawl.hosts.empty())
    return "its host is not among --hosts";
  // A stop by the watch leaves "stopped" as the last failure.
  if (!run.reason.empty()) return LimitFailure(run.reason);
  return LastFailure(run.spent ? "the deadline or the request budget ran out first"
                               : "no readable page came back");
}

// One site on the calling thread's run.
SiteOutcome EstimateSite(EstimateOptions o, const std::string& url, bool alone,
                         OrvHttpRun& httpRun) {
  o.url = url;
  EstimateRun run = Estimate(o, alone, httpRun);
  SiteOutcome outcome;
  outcome.error = FailureOf(o, run);
  if (!outcome.error.empty()) return outcome;
  if (run.exact != run.estimate)
    std::cerr << "orvwebpage: warning: the estimate wrapped around in its 32-bit arithmetic; "
                 "summed in 64 bits it is " +
                     std::to_string(run.exact) + " pages\n";
  if (!run.interrupted && !run.reason.empty())
    std::cerr << PartialLine(o.url, run.reason, o.maxRequests, o.crawl.deadline, o.crawl.maxMemory)
              << std::flush;
  outcome.text = RunText(o, run);
  return outcome;
}

}  // namespace

Command AddEstimateCommand(CLI::App& parent) {
  auto* app = parent.add_subcommand("estimate",
                                    "Estimate how many pages a site holds, crawling it from URL");
  auto o = std::make_shared<EstimateOptions>();
  AddSiteBatchOptions(app, o->batch, "estimated", "estimate");
  app->add_flag("--ignore-robots", o->crawl.ignoreRobots,
                "do not read robots.txt, nor keep to what it refuses");
  app->add_option("--max-requests", o->maxRequests,
                  "stop making requests after N of them; 0: no budget (default 10000, far more "
                  "than a site of a few thousand pages takes, an end to one that never ends)")
      ->transform(WholeNumber(0, INT64_MAX, "N"));
  AddCrawlOptions(app, o->crawl);
  app->add_flag("--json", o->batch.json,
                "print one JSON document a site, one a line: url, estimate, requests, seconds");
  app->add_flag("--explain", o->explain,
                "also print what the estimate is made of: its shapes, and each listing's pager "
                "and probes");
  return {app, [o] {
            return RunSiteBatch(o->batch, [o](const std::string& url, bool alone, OrvHttpRun& run) {
              return EstimateSite(*o, url, alone, run);
            });
          }};
}
