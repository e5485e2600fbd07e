#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "core/OrvOwned.h"
#include "core/OrvStrMap.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "platform/http/OrvHostPatterns.h"
#include "platform/http/OrvHttpShare.h"
#include "platform/http/OrvRobotsTxt.h"

using OrvHttpClock = std::chrono::steady_clock;

// What one origin (scheme, host and port) of a run is known by.
struct OrvHttpOrigin {
  OrvRobotsTxt robots;
  int robotsRead = 0;   // robots holds the origin's answer
  int robotsFound = 0;  // and it was a file, not an error
  OrvString refusal;    // why it refuses a URL: its rules, or an error reading it
  bool hasStarted = false;
  OrvHttpClock::time_point lastStart;  // of the latest request there, for Crawl-delay
};

// Everything of one run. lock guards the fields below it that change;
// robotsLock is held while a robots.txt is fetched, and is taken before lock.
struct OrvHttpRunState {
  std::mutex lock;
  std::condition_variable wake;  // a delay wait ends early when the run stops
  OrvHttpSettings settings;
  bool hasDeadline = false;
  OrvHttpClock::time_point deadline;
  bool hasStarted = false;
  OrvHttpClock::time_point lastStart;  // start slot of the latest admitted request
  OrvString currentUrl;
  OrvHttpProgressFn progress = nullptr;
  void* progressContext = nullptr;
  OrvHostPatterns hosts;
  OrvString failedUrl;
  OrvString failure;
  OrvStrArray robotsRefused;
  std::atomic<int64_t> requests{0};
  std::atomic<int64_t> fetches{0};
  std::atomic<int64_t> bytes{0};
  std::atomic<int> stopped{0};
  OrvHttpShare share;  // connections, DNS and TLS sessions of the run's clients

  std::mutex robotsLock;
  OrvStrMap<int32_t> originIndex;  // "scheme://host:port" to its place in origins
  std::vector<OrvOwnedObject<OrvHttpOrigin>, OrvAllocator<OrvOwnedObject<OrvHttpOrigin>>> origins;

  ~OrvHttpRunState() { ForgetOrigins(); }
  // Caller holds robotsLock and lock, or is the only user.
  void ForgetOrigins() {
    origins.clear();
    originIndex.Clear();
  }
};

// The run bound to the calling thread, or the process's default run.
OrvHttpRunState& OrvCurrentRun();
