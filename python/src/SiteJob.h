#pragma once

// A crawl runs on a thread of its own so that the caller's thread can drop the
// GIL and still answer Ctrl-C and a stop event while it waits.

#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <thread>

namespace orvpy {

// Refuses a stop that cannot be asked is_set(), before any thread starts.
inline void CheckStopEvent(const pybind11::object& stop) {
  if (!stop.is_none() && !pybind11::hasattr(stop, "is_set"))
    throw pybind11::type_error("stop must be a threading.Event or another object with is_set()");
}

// Job has Run() (on the worker thread), Wait() (true once done, false after a
// short slice) and Stop(). Gives whether the stop event ended it. A Ctrl-C or
// a failing is_set() stops the job and is raised once the worker has ended; the job is shared
// because it may outlive a caller that was interrupted.
template <class Job>
bool RunOffGil(const std::shared_ptr<Job>& job, const pybind11::object& stop) {
  std::thread worker([job] { job->Run(); });
  std::optional<pybind11::error_already_set> failure;
  bool stopped = false;
  for (;;) {
    bool done;
    {
      pybind11::gil_scoped_release released;
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
    pybind11::gil_scoped_release released;
    worker.join();
  }
  if (failure) throw *failure;
  return stopped;
}

}  // namespace orvpy
