// `orvwebpage size URL...`: how many pages a site holds, from its sitemaps, a
// crawl that reads today's pagers, and the exact estimate, with the range
// the figure is sure of and each source's figure beside it.

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

#include "Command.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "ProgressLine.h"
#include "RunLimits.h"
#include "RunWatch.h"
#include "ShownText.h"
#include "SiteBatch.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvSiteSize.h"
#include "orvwebpage/OrvString.h"

namespace {

struct SizeOptions {
  SiteBatch batch;
  int64_t maxRequests = 60;
  CrawlOptions crawl;
  bool explain = false;
};

std::string Text(const OrvString& text) { return text.buf ? std::string(text.buf, text.len) : ""; }

std::string Range(int64_t low, int64_t high) {
  return std::to_string(low) + "-" + std::to_string(high);
}

struct Progress {
  ProgressLine line{STDERR_FILENO};
};

void ShowProgress(const OrvHttpProgress& p, void* context) {
  static_cast<Progress*>(context)->line.Show(p.requests, p.bytes, p.url ? p.url : "", "sizing");
}

nlohmann::ordered_json Explanation(const OrvSiteSize& size) {
  nlohmann::ordered_json out;
  out["sitemaps"] = nlohmann::ordered_json::array();
  for (int i = 0; i < size.GetSitemapCount(); ++i) {
    OrvSiteSizeSitemap s;
    if (!size.FetchSitemap(i, s)) continue;
    nlohmann::ordered_json one;
    one["url"] = Text(s.url);
    one["pages"] = s.pages;
    if (s.children) one["children"] = s.children;
    if (s.sampled) one["sampled"] = true;
    if (s.problem.len) one["problem"] = Text(s.problem);
    out["sitemaps"].push_back(one);
  }
  out["listings"] = nlohmann::ordered_json::array();
  for (int i = 0; i < size.GetListingCount(); ++i) {
    OrvSiteSizeListing l;
    if (!size.FetchListing(i, l)) continue;
    nlohmann::ordered_json one;
    one["first"] = Text(l.firstUrl);
    one["template"] = Text(l.pattern);
    one["kind"] = Text(l.family);
    one["listings"] = l.members;
    one["last_page"] = l.lastPage;
    one["last_low"] = l.lastLow;
    one["last_high"] = l.lastHigh;
    one["item_shape"] = Text(l.itemShape);
    one["items_per_page"] = l.itemsPerPage;
    one["items"] = l.items;
    one["pages_past_first"] = l.extraPages;
    one["probes"] = nlohmann::ordered_json::array();
    for (int p = 0; p < l.probeCount; ++p) {
      OrvSiteSizeProbe probe;
      if (size.FetchProbe(i, p, probe))
        one["probes"].push_back(
            {{"page", probe.page}, {"good", probe.good != 0}, {"status", probe.status}});
    }
    out["listings"].push_back(one);
  }
  out["shapes"] = nlohmann::ordered_json::array();
  for (int i = 0; i < size.GetShapeCount(); ++i) {
    OrvSiteSizeShape s;
    if (!size.FetchShape(i, s)) continue;
    out["shapes"].push_back({{"key", Text(s.key)},
                             {"seen", s.seen},
                             {"pages", s.pages},
                             {"low", s.low},
                             {"high", s.high},
                             {"how", Text(s.how)}});
  }
  return out;
}

// A text of a page or a server, as a terminal may show it.
std::string Shown(const nlohmann::ordered_json& text) { return ShownText(text.get<std::string>()); }

void PrintExplanation(const nlohmann::ordered_json& e, std::ostream& out) {
  for (const auto& s : e["sitemaps"]) {
    out << "sitemap  " << Shown(s["url"]) << ": " << s["pages"] << " pages";
    if (s.contains("children")) out << ", " << s["children"] << " sitemaps named";
    if (s.contains("sampled")) out << " (sampled)";
    if (s.contains("problem")) out << " [" << Shown(s["problem"]) << "]";
    out << "\n";
  }
  for (const auto& l : e["listings"]) {
    out << "listing  " << Shown(l["first"]) << " -> " << Shown(l["template"]) << ": last page "
        << l["last_page"] << " (" << l["last_low"] << "-" << l["last_high"] << "), "
        << l["items_per_page"] << " items a page of " << Shown(l["item_shape"]) << "; "
        << l["listings"] << " listing(s) of kind " << Shown(l["kind"]) << ", "
        << l["pages_past_first"] << " pages past their first\n         probes:";
    for (const auto& p : l["probes"])
      out << " " << p["page"] << (p["good"].get<bool>() ? " ok" : " end") << "(" << p["status"]
          << ")";
    out << "\n";
  }
  for (const auto& s : e["shapes"])
    out << "shape    " << Shown(s["key"]) << ": " << s["pages"] << " (" << s["low"] << "-"
        << s["high"] << ") by " << s["how"].get<std::string>() << ", " << s["seen"] << " seen\n";
}

// One site on the calling thread's run.
SiteOutcome SizeSite(const SizeOptions& o, const std::string& url, bool alone,
                     OrvHttpRun& httpRun) {
  OrvSiteSize size;
  StopOnInterrupt stop([&size] { size.Stop(); });
  OrvHttpSettings settings = CrawlSettings(o.crawl, o.maxRequests);
  if (!o.crawl.hosts.empty())
    OrvHttpLimits::SetHosts(o.crawl.hosts.data(), long(o.crawl.hosts.size()));

  std::unique_ptr<Progress> progress;
  if (alone && isatty(STDERR_FILENO)) {
    progress.reset(new Progress);
    OrvHttpLimits::SetProgress(ShowProgress, progress.get());
  }

  OrvHttpLimits::ResetCounters();
  auto start = std::chrono::steady_clock::now();
  OrvHttpLimits::Set(settings);
  std::string limit;
  {
    RunWatch watch(start, o.crawl.deadline, o.crawl.maxMemory, [&] {
      size.Stop();
      httpRun.Stop();
    });
    size.Measure(url.data(), long(url.size()), o.maxRequests);
    limit = LimitReason(watch.Reason());
  }
  // The request budget is the plan of the measure, which spends it by design.
  if (limit == "request budget") limit.clear();
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  bool interrupted = SiteBatchInterrupted();

  if (progress) {
    OrvHttpLimits::SetProgress(nullptr, nullptr);
    progress->line.Clear();
  }

  SiteOutcome outcome;
  if (size.Source() == ORV_SIZE_NONE) {
    OrvString failedUrl, failure;
    OrvHttpLimits::GetLastFailure(failedUrl, failure);
    outcome.error = interrupted      ? "interrupted"
                    : !limit.empty() ? LimitFailure(limit)
                    : failure.len    ? Text(failure)
                                     : "no readable page came back";
    return outcome;
  }

  nlohmann::ordered_json out;
  out["url"] = url;
  out["pages"] = size.Pages();
  out["low"] = size.Low();
  out["high"] = size.High();
  out["source"] = OrvSiteSize::SourceName(size.Source());
  out["requests"] = size.Requests();
  out["seconds"] = seconds;
  if (interrupted || !limit.empty()) {
    out["partial"] = true;
    out["reason"] = interrupted ? "interrupted" : limit;
  }
  if (!interrupted && !limit.empty())
    std::cerr << PartialLine(url, limit, o.maxRequests, o.crawl.deadline, o.crawl.maxMemory)
              << std::flush;
  if (size.ExactWrapped()) out["wrapped"] = true;
  OrvStrArray refused;
  OrvHttpLimits::GetRobotsRefused(refused);
  if (refused.count) {
    out["robots_refused"] = nlohmann::ordered_json::array();
    for (int32_t i = 0; i < refused.count; ++i)
      out["robots_refused"].push_back(std::string(refused[i], size_t(refused.GetStringLen(i))));
  }
  out["why"] = Text(size.Reason());
  out["sitemap"] = {{"pages", size.SitemapPages()},
                    {"low", size.SitemapLow()},
                    {"high", size.SitemapHigh()},
                    {"trusted", size.SitemapTrusted() != 0},
                    {"requests", size.SitemapRequests()}};
  out["crawl"] = {{"pages", size.CrawlPages()},
                  {"low", size.CrawlLow()},
                  {"high", size.CrawlHigh()},
                  {"pages_read", size.CrawlPagesRead()},
                  {"requests", size.CrawlRequests()}};
  out["exact"] = {{"pages", size.ExactPages()}, {"requests", size.ExactRequests()}};
  nlohmann::ordered_json explanation;
  if (o.explain) explanation = Explanation(size);

  if (o.batch.json) {
    if (o.explain)
      for (auto& [key, value] : explanation.items()) out[key] = value;
    outcome.text = JsonText(out, kOneLine);
    return outcome;
  }
  char secondsText[32];
  std::snprintf(secondsText, sizeof secondsText, "%.2f", seconds);
  std::ostringstream text;
  text << "url:      " << ShownText(url) << "\n"
       << "pages:    " << size.Pages() << " (" << Range(size.Low(), size.High()) << "), from "
       << OrvSiteSize::SourceName(size.Source()) << " (" << Text(size.Reason()) << ")\n"
       << "sitemap:  " << size.SitemapPages() << " ("
       << Range(size.SitemapLow(), size.SitemapHigh()) << ")"
       << (size.SitemapPages() ? size.SitemapTrusted() ? ", trusted" : ", not trusted" : "") << "\n"
       << "crawl:    " << size.CrawlPages() << " (" << Range(size.CrawlLow(), size.CrawlHigh())
       << "), " << size.CrawlPagesRead() << " pages read\n"
       << "exact:    " << size.ExactPages() << (size.ExactWrapped() ? " (wrapped)" : "") << "\n"
       << "requests: " << size.Requests() << " (sitemap " << size.SitemapRequests() << ", crawl "
       << size.CrawlRequests() << ", exact " << size.ExactRequests() << ")\n"
       << "seconds:  " << secondsText << "\n";
  if (out.contains("partial")) text << "partial:  " << out["reason"].get<std::string>() << "\n";
  if (out.contains("robots_refused"))
    text << "robots:   " << out["robots_refused"].size() << " URLs refused by robots.txt\n";
  if (o.explain) PrintExplanation(explanation, text);
  outcome.text = text.str();
  return outcome;
}

}  // namespace

Command AddSizeCommand(CLI::App& parent) {
  auto* app = parent.add_subcommand(
      "size", "How many pages a site holds: sitemaps, a crawl of its listings, the exact estimate");
  auto o = std::make_shared<SizeOptions>();
  AddSiteBatchOptions(app, o->batch, "sized", "size");
  app->add_option("--max-requests", o->maxRequests, "requests the whole run may make (60)")
      ->transform(WholeNumber(1, INT64_MAX, "N"));
  AddCrawlOptions(app, o->crawl);
  app->add_flag("--json", o->batch.json,
                "print one JSON document a site, one a line: url, pages, low, high, source, ...");
  app->add_flag("--ignore-robots", o->crawl.ignoreRobots, "do not read or obey robots.txt files");
  app->add_flag("--explain", o->explain,
                "also print what the figure is made of: sitemaps, listings, shapes");
  return {app, [o] {
            return RunSiteBatch(o->batch, [o](const std::string& url, bool alone, OrvHttpRun& run) {
              return SizeSite(*o, url, alone, run);
            });
          }};
}
