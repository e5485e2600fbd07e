// orvwebpage.estimate: a site's page count, crawled on a worker thread while
// the caller waits without the GIL, in short slices that look for Ctrl-C and
// for the caller's stop event.

#include <pybind11/stl.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "Bindings.h"
#include "EstimateExplain.h"
#include "PyText.h"
#include "RunLimits.h"
#include "SiteJob.h"
#include "orvwebpage/OrvExactEstimate.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

namespace orvpy {
namespace {

PyTypeObject* resultType = nullptr;
PyTypeObject* shapeType = nullptr;
PyTypeObject* listingType = nullptr;
PyTypeObject* probeType = nullptr;

constexpr double kMaxSeconds = 1e6;

int32_t Milliseconds(const std::optional<double>& seconds, const char* what, bool zeroOk) {
  if (!seconds) return 0;
  double s = *seconds;
  if (!std::isfinite(s) || s < 0 || (!zeroOk && s == 0) || s > kMaxSeconds)
    throw py::value_error(std::string(what) + " must be a number of seconds above 0" +
                          (zeroOk ? " or 0" : "") + " and at most 1000000");
  return int32_t(std::ceil(s * 1000));
}

}  // namespace

OrvHttpSettings MakeHttpSettings(std::optional<int64_t> maxRequests, std::optional<double> timeout,
                                 std::optional<double> deadline, std::optional<double> delay,
                                 const std::optional<std::string>& userAgent, bool obeyRobots,
                                 const py::object& maxMemory) {
  OrvHttpSettings settings;
  settings.obeyRobots = obeyRobots ? 1 : 0;
  if (maxRequests && *maxRequests < 0)
    throw py::value_error("max_requests must be 0 (no budget) or more");
  settings.maxRequests = maxRequests ? *maxRequests : kDefaultMaxRequests;
  if (timeout) settings.requestTimeoutMs = Milliseconds(timeout, "timeout", false);
  settings.deadlineMs =
      Milliseconds(deadline ? *deadline : kDefaultDeadlineSeconds, "deadline", true);
  settings.maxHeldBytes = kDefaultMaxMemory;
  if (py::isinstance<py::str>(maxMemory)) {
    std::string text = maxMemory.cast<std::string>();
    if (!ParseByteSize(text, settings.maxHeldBytes))
      throw py::value_error("max_memory must be bytes or a size such as \"512M\" or \"2G\": " +
                            text);
  } else if (py::isinstance<py::int_>(maxMemory) && !py::isinstance<py::bool_>(maxMemory)) {
    settings.maxHeldBytes = maxMemory.cast<int64_t>();
    if (settings.maxHeldBytes < 0)
      throw py::value_error("max_memory must be 0 (no budget) or more");
  } else if (!maxMemory.is_none()) {
    throw py::type_error("max_memory must be an int of bytes or a text such as \"512M\"");
  }
  settings.delayMs = Milliseconds(delay, "delay", true);
  if (userAgent) {
    if (userAgent->size() >= sizeof settings.userAgent)
      throw py::value_error("user_agent must be at most " +
                            std::to_string(sizeof settings.userAgent - 1) + " bytes");
    for (unsigned char c : *userAgent)
      if (c < 0x20 || c == 0x7F) throw py::value_error("user_agent cannot hold control characters");
    std::snprintf(settings.userAgent, sizeof settings.userAgent, "%s", userAgent->c_str());
  }
  return settings;
}

std::string HostPatterns(const py::object& hosts) {
  if (hosts.is_none()) return "";
  if (py::isinstance<py::str>(hosts) || py::isinstance<py::bytes>(hosts)) {
    TextView view = ViewTextOrThrow(hosts, "hosts");
    return std::string(view.data, size_t(view.size));
  }
  if (!py::isinstance<py::iterable>(hosts))
    throw py::type_error("hosts must be a list of host patterns or one text");
  std::string joined;
  for (py::handle host : hosts) {
    TextView view = ViewTextOrThrow(host, "a host pattern");
    if (!joined.empty()) joined += ',';
    joined.append(view.data, size_t(view.size));
  }
  return joined;
}

PyObject* NewReasonText(const std::string& reason) {
  if (reason.empty()) {
    Py_INCREF(Py_None);
    return Py_None;
  }
  return PyUnicode_FromString(reason.c_str());
}

namespace {

struct Estimating : SiteJob {
  bool explain = false;
  Explanation explanation;
  OrvWebPageCountEstimate estimator;
  long estimate = 0;
  int64_t exact = 0;  // the same sum in 64 bits: where it differs, the estimate wrapped
  int64_t requests = 0, bytes = 0;

  void Crawl() override { estimate = estimator.EstimateCount(url.data(), long(url.size())); }
  void StopCrawl() override { estimator.StopEstimating(); }
  void Finish() override {
    exact = OrvExactEstimate(estimator);
    requests = OrvHttpLimits::GetRequests();
    bytes = OrvHttpLimits::GetBytes();
    if (explain) explanation = ReadExplanation(estimator);
  }
};

PyObject* NoneRef() {
  Py_INCREF(Py_None);
  return Py_None;
}

PyObject* NewRecord(PyTypeObject* type, std::initializer_list<PyObject*> fields) {
  PyObject* record = PyStructSequence_New(type);
  if (!record) {
    for (PyObject* field : fields) Py_XDECREF(field);
    throw py::error_already_set();
  }
  Py_ssize_t i = 0;
  bool failed = false;
  for (PyObject* field : fields) {
    if (!field) {
      failed = true;
      field = NoneRef();
    }
    PyStructSequence_SET_ITEM(record, i++, field);
  }
  if (failed) {
    Py_DECREF(record);
    throw py::error_already_set();
  }
  return record;
}

PyObject* Str(const std::string& s) { return NewText(s.data(), Py_ssize_t(s.size()), false); }

py::list Shapes(const Explanation& explanation) {
  py::list shapes;
  for (const ExplainedShape& s : explanation.shapes) {
    PyObject* listing = s.listing >= 0 ? PyLong_FromLong(s.listing) : NoneRef();
    shapes.append(py::reinterpret_steal<py::object>(NewRecord(
        shapeType,
        {Str(s.key), Str(KindName(s.kind)), PyBool_FromLong(s.read), PyLong_FromLong(s.estimate),
         PyLong_FromLong(s.sightings), PyLong_FromLong(s.pages), Str(s.url), listing})));
  }
  return shapes;
}

py::list Listings(const Explanation& explanation) {
  py::list listings;
  for (const ExplainedListing& l : explanation.listings) {
    py::list probes;
    for (const OrvEstimateProbe& p : l.probes)
      probes.append(py::reinterpret_steal<py::object>(
          NewRecord(probeType, {PyLong_FromLong(p.page), Str(OutcomeName(p.outcome)),
                                PyLong_FromLong(p.httpStatus), PyLong_FromLong(p.lastNumber)})));
    listings.append(py::reinterpret_steal<py::object>(NewRecord(
        listingType,
        {Str(l.key), Str(l.url), Str(l.param), PyLong_FromLong(l.step), PyLong_FromLong(l.offset),
         probes.release().ptr(), PyLong_FromLong(l.lastPage), PyLong_FromLong(l.urlCount)})));
  }
  return listings;
}

py::object Estimate(const py::object& url, std::optional<int64_t> maxRequests,
                    std::optional<double> timeout, std::optional<double> deadline,
                    std::optional<double> delay, const std::optional<std::string>& userAgent,
                    const py::object& stop, bool obeyRobots, const py::object& hosts, bool explain,
                    const py::object& maxMemory) {
  TextView view = ViewTextOrThrow(url, "url");
  CheckStopEvent(stop);
  auto crawl = std::make_shared<Estimating>();
  crawl->url.assign(view.data, size_t(view.size));
  crawl->settings =
      MakeHttpSettings(maxRequests, timeout, deadline, delay, userAgent, obeyRobots, maxMemory);
  crawl->hosts = HostPatterns(hosts);
  crawl->explain = explain;

  bool stopped = RunOffGil(crawl, stop);

  PyObject* result = PyStructSequence_New(resultType);
  if (!result) throw py::error_already_set();
  PyStructSequence_SET_ITEM(result, 0, PyLong_FromLong(crawl->estimate));
  PyStructSequence_SET_ITEM(result, 1, PyLong_FromLongLong(crawl->requests));
  PyStructSequence_SET_ITEM(result, 2, PyLong_FromLongLong(crawl->bytes));
  PyStructSequence_SET_ITEM(result, 3, PyFloat_FromDouble(crawl->seconds));
  PyStructSequence_SET_ITEM(result, 4, PyBool_FromLong(stopped));
  PyStructSequence_SET_ITEM(result, 5,
                            explain ? Shapes(crawl->explanation).release().ptr() : NoneRef());
  PyStructSequence_SET_ITEM(result, 6,
                            explain ? Listings(crawl->explanation).release().ptr() : NoneRef());
  PyStructSequence_SET_ITEM(result, 7, PyBool_FromLong(crawl->exact != crawl->estimate));
  // A stop event's crawl is told by stopped.
  std::string reason = stopped ? "" : crawl->reason;
  PyStructSequence_SET_ITEM(result, 8, PyBool_FromLong(!reason.empty()));
  PyStructSequence_SET_ITEM(result, 9, NewReasonText(reason));
  return py::reinterpret_steal<py::object>(result);
}

}  // namespace

void AddEstimate(py::module_& m) {
  resultType = NewRecordType(
      m, "EstimateResult",
      "(estimate, requests); also bytes (body bytes read), seconds, stopped (by the stop event), "
      "shapes and listings (with explain=True, else None), wrapped (the estimate wrapped around "
      "in its 32-bit arithmetic), partial (a limit ended the crawl) and reason (\"request "
      "budget\", \"deadline\" or \"memory budget\", else None)",
      {"estimate", "requests", "bytes", "seconds", "stopped", "shapes", "listings", "wrapped",
       "partial", "reason"},
      2);
  shapeType =
      NewRecordType(m, "EstimateShape", "One URL shape of an estimate, largest first",
                    {"key", "kind", "read", "estimate", "sightings", "pages", "url", "listing"});
  listingType =
      NewRecordType(m, "EstimateListing", "A listing's pager and the search for its last page",
                    {"key", "url", "param", "step", "offset", "probes", "last_page", "urls"});
  probeType = NewRecordType(m, "EstimateProbe", "One probe of a listing's last-page search",
                            {"page", "outcome", "status", "last"});
  m.def("estimate", &Estimate, py::arg("url"), py::arg("max_requests") = py::none(),
        py::arg("timeout") = py::none(), py::arg("deadline") = py::none(),
        py::arg("delay") = py::none(), py::arg("user_agent") = py::none(),
        py::arg("stop") = py::none(), py::arg("obey_robots") = true, py::arg("hosts") = py::none(),
        py::arg("explain") = false, py::arg("max_memory") = py::none(),
        R"(Estimates how many pages the site at url holds by crawling it.

Returns EstimateResult(estimate, requests); estimate 0 when nothing could be read.
max_requests: request budget (default 10000, 0 for none); timeout: seconds per
request (default 30); deadline: seconds for the whole run, the page in hand
included (default 3600, 0 for none); max_memory: bytes, or a text such as
"512M", the library may hold before the crawl stops (default "2G", 0 for none).
The defaults are far above what a site of a few thousand pages needs, and an
end to one that never ends; result.partial and result.reason tell a crawl that
a limit ended. delay: seconds between two requests; user_agent: the User-Agent
header; stop: a threading.Event that ends the crawl early when set. Ctrl-C
ends it too and raises KeyboardInterrupt.
obey_robots: read each origin's robots.txt (one request, counted) and fetch
nothing it refuses; False turns that off.
hosts: the only hosts requests may go to, e.g. ["site.test", "*.site.test:8080"]
(as the tool's --hosts); explain: fill result.shapes and result.listings with
what the estimate is made of (as the tool's --explain --json).

The crawl runs without the GIL, with limits and counters of its own: calls on
several threads run side by side, each within its own limits.)");
}

}  // namespace orvpy
