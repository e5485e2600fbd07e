#pragma once

// One site's crawl runs on a thread of its own, in an HTTP run of its own,
// so that the caller's thread can drop the GIL and still answer Ctrl-C and a
// stop event while it waits.

#include <pybind11/pybind11.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvHttpRun.h"

namespace orvpy {

class SiteJob {
 public:
  virtual ~SiteJob() = default;

  std::string url;
  std::string hosts;  // empty: every host
  OrvHttpSettings settings;
  // Once it ran: how long the crawl took and the limit that cut it, if any.
  double seconds = 0;
  std::string reason;

  // On the worker thread: the crawl under the settings, a watch on its
  // deadline and memory budget, and the hosts.
  void Run();
  // From the waiting thread, as often as it likes.
  void Stop();
  // Waits one slice; true once the run is done.
  bool Wait();
  bool HostsRefused() const { return hostsRefused; }

 protected:
  // On the bound run, with the watch on.
  virtual void Crawl() = 0;
  // Ends the crawl in hand, from any thread; only once it has started.
  virtual void StopCrawl() = 0;
  // On the bound run, after the crawl and its watch.
  virtual void Finish() {}

  OrvHttpRun httpRun;  // this call's limits and counters, whatever other threads run

 private:
  std::mutex lock;
  std::condition_variable finished;
  bool started = false, done = false, stopRequested = false, hostsRefused = false;
  std::chrono::steady_clock::time_point start;
};

// Refuses a stop that cannot be asked is_set(), before any thread starts.
void CheckStopEvent(const pybind11::object& stop);

// Runs the job on a worker thread while the caller waits without the GIL. A
// Ctrl-C or a failing is_set() stops the job and is raised once the worker
// has ended; a malformed host pattern raises ValueError. Gives whether the
// stop event ended the job. The job is shared because it may outlive a
// caller that was interrupted.
bool RunOffGil(const std::shared_ptr<SiteJob>& job, const pybind11::object& stop);

}  // namespace orvpy
