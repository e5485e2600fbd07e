#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

// Watches one run from a thread of its own and calls stop, at every look
// until the run ends, once the deadline passes or the library holds more
// than the memory budget. The HTTP layer refuses requests past either
// already; the watch also ends the analysis of a page in hand, which reads
// no clock and may be what fills the memory.
class RunWatch {
 public:
  // 0 for either limit: none. The deadline counts from start, taken before
  // the HTTP layer's clock starts, so that the watch never sees a run the
  // HTTP layer cut as on time.
  RunWatch(std::chrono::steady_clock::time_point start, double deadlineSeconds,
           int64_t memoryBudget, std::function<void()> stop);
  ~RunWatch();
  RunWatch(const RunWatch&) = delete;
  RunWatch& operator=(const RunWatch&) = delete;

  // "deadline" or "memory budget" once one was reached, else nullptr. Looks
  // once more itself: a run the HTTP layer cut may end before the watch's
  // next look.
  const char* Reason();

 private:
  void Watch();
  void Look();

  std::chrono::steady_clock::time_point deadline;
  bool hasDeadline;
  int64_t memoryBudget;
  std::function<void()> stop;
  std::atomic<const char*> reason{nullptr};
  std::mutex lock;
  std::condition_variable wake;
  bool ending = false;
  std::thread thread;
};
