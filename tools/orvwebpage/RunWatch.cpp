#include "RunWatch.h"

#include "orvwebpage/OrvMemoryUse.h"

namespace {

// Often enough that a stop comes within a blink, rarely enough to cost nothing.
constexpr auto kLook = std::chrono::milliseconds(10);

}  // namespace

RunWatch::RunWatch(std::chrono::steady_clock::time_point start, double deadlineSeconds,
                   int64_t budget, std::function<void()> stopRun)
    : deadline(start +
               std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                   std::chrono::duration<double>(deadlineSeconds > 0 ? deadlineSeconds : 0))),
      hasDeadline(deadlineSeconds > 0),
      memoryBudget(budget),
      stop(std::move(stopRun)) {
  // Without a limit there is nothing to watch.
  if (hasDeadline || memoryBudget > 0) thread = std::thread([this] { Watch(); });
}

RunWatch::~RunWatch() {
  {
    std::lock_guard<std::mutex> hold(lock);
    ending = true;
  }
  wake.notify_all();
  if (thread.joinable()) thread.join();
}

const char* RunWatch::Reason() {
  Look();
  return reason.load();
}

void RunWatch::Look() {
  if (reason.load()) return;
  if (memoryBudget > 0 && OrvGetHeldBytes() > memoryBudget)
    reason = "memory budget";
  else if (hasDeadline && std::chrono::steady_clock::now() >= deadline)
    reason = "deadline";
}

void RunWatch::Watch() {
  std::unique_lock<std::mutex> hold(lock);
  while (!wake.wait_for(hold, kLook, [this] { return ending; })) {
    Look();
    // Again at every look: an estimator forgets a stop that comes before
    // its crawl begins.
    if (reason.load()) stop();
  }
}
