// orvwebpage.size: how many pages a site holds, from its sitemaps, a crawl
// of its listings and the exact estimate, measured on a worker thread while
// the caller waits without the GIL, looking for Ctrl-C and its stop event.

#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <string>

#include "Bindings.h"
#include "PyText.h"
#include "SiteJob.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvSiteSize.h"

namespace orvpy {
namespace {

PyTypeObject* resultType = nullptr;

py::str Str(const OrvString& text) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.buf ? text.buf : "", text.len, "replace"));
}

struct Sizing : SiteJob {
  int64_t maxRequests = 60;
  OrvSiteSize size;

  void Crawl() override { size.Measure(url.data(), long(url.size()), maxRequests); }
  void StopCrawl() override { size.Stop(); }
  // The request budget is the plan of the measure, which spends it by design.
  void Finish() override {
    if (reason == "request budget") reason.clear();
  }
};

py::dict Explanation(const OrvSiteSize& size) {
  py::list sitemaps, listings, shapes;
  for (int i = 0; i < size.GetSitemapCount(); ++i) {
    OrvSiteSizeSitemap s;
    if (size.FetchSitemap(i, s))
      sitemaps.append(py::dict(
          py::arg("url") = Str(s.url), py::arg("pages") = s.pages, py::arg("children") = s.children,
          py::arg("sampled") = s.sampled != 0, py::arg("problem") = Str(s.problem)));
  }
  for (int i = 0; i < size.GetListingCount(); ++i) {
    OrvSiteSizeListing l;
    if (!size.FetchListing(i, l)) continue;
    py::list probes;
    for (int p = 0; p < l.probeCount; ++p) {
      OrvSiteSizeProbe probe;
      if (size.FetchProbe(i, p, probe))
        probes.append(py::dict(py::arg("page") = probe.page, py::arg("good") = probe.good != 0,
                               py::arg("status") = probe.status));
    }
    listings.append(
        py::dict(py::arg("first") = Str(l.firstUrl), py::arg("template") = Str(l.pattern),
                 py::arg("kind") = Str(l.family), py::arg("listings") = l.members,
                 py::arg("last_page") = l.lastPage, py::arg("last_low") = l.lastLow,
                 py::arg("last_high") = l.lastHigh, py::arg("item_shape") = Str(l.itemShape),
                 py::arg("items_per_page") = l.itemsPerPage, py::arg("items") = l.items,
                 py::arg("pages_past_first") = l.extraPages, py::arg("probes") = probes));
  }
  for (int i = 0; i < size.GetShapeCount(); ++i) {
    OrvSiteSizeShape s;
    if (size.FetchShape(i, s))
      shapes.append(py::dict(py::arg("key") = Str(s.key), py::arg("seen") = s.seen,
                             py::arg("pages") = s.pages, py::arg("low") = s.low,
                             py::arg("high") = s.high, py::arg("how") = Str(s.how)));
  }
  return py::dict(py::arg("sitemaps") = sitemaps, py::arg("listings") = listings,
                  py::arg("shapes") = shapes);
}

py::object Size(const py::object& url, int64_t maxRequests, std::optional<double> timeout,
                std::optional<double> deadline, std::optional<double> delay,
                const std::optional<std::string>& userAgent, const py::object& stop,
                bool obeyRobots, const py::object& hosts, const py::object& maxMemory) {
  TextView view = ViewTextOrThrow(url, "url");
  CheckStopEvent(stop);
  if (maxRequests < 1) throw py::value_error("max_requests must be at least 1");
  auto sizing = std::make_shared<Sizing>();
  sizing->url.assign(view.data, size_t(view.size));
  sizing->maxRequests = maxRequests;
  sizing->settings =
      MakeHttpSettings(maxRequests, timeout, deadline, delay, userAgent, obeyRobots, maxMemory);
  sizing->hosts = HostPatterns(hosts);

  bool stopped = RunOffGil(sizing, stop);

  const OrvSiteSize& s = sizing->size;
  py::dict sitemap(py::arg("pages") = s.SitemapPages(), py::arg("low") = s.SitemapLow(),
                   py::arg("high") = s.SitemapHigh(), py::arg("trusted") = s.SitemapTrusted() != 0,
                   py::arg("requests") = s.SitemapRequests());
  py::dict crawl(py::arg("pages") = s.CrawlPages(), py::arg("low") = s.CrawlLow(),
                 py::arg("high") = s.CrawlHigh(), py::arg("pages_read") = s.CrawlPagesRead(),
                 py::arg("requests") = s.CrawlRequests());
  py::dict exact(py::arg("pages") = s.ExactPages(), py::arg("requests") = s.ExactRequests(),
                 py::arg("wrapped") = s.ExactWrapped() != 0);
  py::object fields[] = {
      py::int_(s.Pages()),
      py::int_(s.Low()),
      py::int_(s.High()),
      py::str(OrvSiteSize::SourceName(s.Source())),
      py::int_(s.Requests()),
      py::float_(sizing->seconds),
      Str(s.Reason()),
      sitemap,
      crawl,
      exact,
      Explanation(s),
      py::bool_(stopped),
      py::bool_(!stopped && !sizing->reason.empty()),
      py::reinterpret_steal<py::object>(NewReasonText(stopped ? "" : sizing->reason))};
  PyObject* result = PyStructSequence_New(resultType);
  if (!result) throw py::error_already_set();
  for (size_t i = 0; i < std::size(fields); ++i)
    PyStructSequence_SET_ITEM(result, Py_ssize_t(i), fields[i].release().ptr());
  return py::reinterpret_steal<py::object>(result);
}

}  // namespace

void AddSize(py::module_& m) {
  resultType =
      NewRecordType(m, "SizeResult",
                    "(pages, low, high, source); also requests, seconds, why, sitemap, "
                    "crawl, exact (each source's figures), explanation, stopped, partial "
                    "and reason (\"deadline\" or \"memory budget\", else None)",
                    {"pages", "low", "high", "source", "requests", "seconds", "why", "sitemap",
                     "crawl", "exact", "explanation", "stopped", "partial", "reason"},
                    4);
  m.def("size", &Size, py::arg("url"), py::arg("max_requests") = 60,
        py::arg("timeout") = py::none(), py::arg("deadline") = py::none(),
        py::arg("delay") = py::none(), py::arg("user_agent") = py::none(),
        py::arg("stop") = py::none(), py::arg("obey_robots") = true, py::arg("hosts") = py::none(),
        py::arg("max_memory") = py::none(),
        R"(How many pages the site at url holds: its sitemaps, a crawl of its listings
and the exact estimate, combined into one figure with its source and range.

Returns SizeResult(pages, low, high, source); source is "sitemap", "crawl",
"exact", or "none" when nothing could be read. max_requests: the whole run's
request budget (60), the plan of the measure rather than a limit; robots.txt
is obeyed unless obey_robots is False; hosts and the other arguments as for
estimate(), deadline and max_memory with its defaults. Runs without the
GIL, on HTTP limits and counters of its own.)");
}

}  // namespace orvpy
