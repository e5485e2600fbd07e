#include "orvwebpage/OrvHttpRun.h"

#include "platform/http/OrvHttpRunState.h"

namespace {

thread_local OrvHttpRunState* bound = nullptr;

}  // namespace

OrvHttpRunState& OrvCurrentRun() {
  if (bound) return *bound;
  // Never destroyed: clients on other threads may still use it at exit.
  static OrvHttpRunState* process = OrvNew<OrvHttpRunState>();
  return *process;
}

OrvHttpRun::OrvHttpRun() : state(OrvNew<OrvHttpRunState>()) {}

OrvHttpRun::~OrvHttpRun() {
  Unbind();
  OrvDelete(state);
}

void OrvHttpRun::Bind() { bound = state; }

void OrvHttpRun::Unbind() {
  if (bound == state) bound = nullptr;
}

void OrvHttpRun::Stop() {
  {
    std::lock_guard<std::mutex> hold(state->lock);
    state->stopped = 1;
  }
  state->wake.notify_all();
}

int64_t OrvHttpRun::GetRequests() const { return state->requests.load(); }

int64_t OrvHttpRun::GetBytes() const { return state->bytes.load(); }
