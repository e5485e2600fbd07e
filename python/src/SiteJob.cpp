#include "SiteJob.h"

#include <optional>
#include <thread>

#include "RunLimits.h"
#include "RunWatch.h"

namespace py = pybind11;

namespace orvpy {
namespace {

constexpr auto kSlice = std::chrono::milliseconds(50);

}  // namespace

void SiteJob::Run() {
  httpRun.Bind();
  {
    std::lock_guard<std::mutex> guard(lock);
    hostsRefused = OrvHttpLimits::SetHosts(hosts.data(), long(hosts.size())) == 0;
    if (!stopRequested && !hostsRefused) {
      OrvHttpLimits::ResetCounters();
      start = std::chrono::steady_clock::now();
      OrvHttpLimits::Set(settings);  // starts the deadline's clock
      started = true;
    }
  }
  if (started) {
    {
      RunWatch watch(start, double(settings.deadlineMs) / 1000, settings.maxHeldBytes, [this] {
        StopCrawl();
        httpRun.Stop();
      });
      Crawl();
      reason = LimitReason(watch.Reason());
    }
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    Finish();
  }
  httpRun.Unbind();
  std::lock_guard<std::mutex> guard(lock);
  done = true;
  finished.notify_all();
}

// A crawler may forget a stop that comes before its crawl begins, so the
// caller repeats it every slice; stopping the HTTP run makes the queued rest
// of the crawl end at once, a request in flight included.
void SiteJob::Stop() {
  std::lock_guard<std::mutex> guard(lock);
  if (!stopRequested && started) httpRun.Stop();
  stopRequested = true;
  if (started) StopCrawl();
}

bool SiteJob::Wait() {
  std::unique_lock<std::mutex> guard(lock);
  return finished.wait_for(guard, kSlice, [this] { return done; });
}

void CheckStopEvent(const py::object& stop) {
  if (!stop.is_none() && !py::hasattr(stop, "is_set"))
    throw py::type_error("stop must be a threading.Event or another object with is_set()");
}

bool RunOffGil(const std::shared_ptr<SiteJob>& job, const py::object& stop) {
  std::thread worker([job] { job->Run(); });
  std::optional<py::error_already_set> failure;
  bool stopped = false;
  for (;;) {
    bool done;
    {
      py::gil_scoped_release released;
      done = job->Wait();
    }
    if (done) break;
    if (!failure && PyErr_CheckSignals() != 0) failure.emplace();
    if (!failure && !stopped && !stop.is_none()) {
      PyObject* set = PyObject_CallMethod(stop.ptr(), "is_set", nullptr);
      if (!set) {
        failure.emplace();
      } else {
        stopped = PyObject_IsTrue(set) == 1;
        Py_DECREF(set);
      }
    }
    if (failure || stopped) job->Stop();
  }
  {
    py::gil_scoped_release released;
    worker.join();
  }
  if (failure) throw *failure;
  if (job->HostsRefused()) throw py::value_error("hosts holds a malformed pattern: " + job->hosts);
  return stopped;
}

}  // namespace orvpy
