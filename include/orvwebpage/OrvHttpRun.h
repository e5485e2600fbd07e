#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"

struct OrvHttpRunState;

// One run of requests with limits of its own: settings, counters, allowed
// hosts, the robots.txt files read, connections and a stop flag. Bind() makes
// it the run of the calling thread: from then on OrvHttpLimits' calls on that
// thread, and every OrvHttp::Run there, act on it. A thread with no run bound
// acts on the process's default run. Runs on different threads share
// nothing, so estimates on several threads each keep their own limits.
class ORV_API OrvHttpRun {
 public:
  // Default settings, zero counters, every host allowed.
  OrvHttpRun();
  // Unbinds it from the calling thread. It must be bound to no other thread.
  ~OrvHttpRun();
  OrvHttpRun(const OrvHttpRun&) = delete;
  OrvHttpRun& operator=(const OrvHttpRun&) = delete;

  // Binds it to the calling thread in place of any run bound there.
  void Bind();
  // The calling thread goes back to the default run, if this run was its own.
  void Unbind();

  // From any thread: ends the request in flight and the delay wait at once;
  // every later request of the run fails until OrvHttpLimits::Reset.
  void Stop();
  // From any thread, for a display of many runs.
  int64_t GetRequests() const;
  int64_t GetBytes() const;

 private:
  OrvHttpRunState* state;
};
