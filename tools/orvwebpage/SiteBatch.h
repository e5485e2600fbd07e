#pragma once

// Commands that measure sites take several at once: entry URLs as arguments
// and from --from, --jobs workers, each site in an HTTP run of its own, the
// results printed in input order as soon as each one and those before it
// are done. Ctrl-C stops the sites in hand and starts no other.

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "orvwebpage/OrvHttpRun.h"

struct SiteBatch {
  std::vector<std::string> urls;  // as given
  std::string from;               // a file of URLs, one a line; "-": stdin
  int jobs = 1;                   // sites measured at once
  bool json = false;              // one JSON line a site, else one block each
};

// What one site gave.
struct SiteOutcome {
  std::string text;   // its block or JSON line, when it could be read
  std::string error;  // why nothing could be read; empty when it could
};

// Runs one site on the calling thread. run is the site's own, fresh and
// bound to that thread; Ctrl-C stops it. alone: the only site, named as an
// argument, so it may show progress on the terminal.
using SiteRunner = std::function<SiteOutcome(const std::string& url, bool alone, OrvHttpRun& run)>;

// URL..., --from and --jobs. measured: "estimated"; measure: "estimate".
void AddSiteBatchOptions(CLI::App* app, SiteBatch& batch, const std::string& measured,
                         const std::string& measure);

// The exit status: 0, 1 when a site failed, 130 after Ctrl-C, 2 with no URL
// at all. A lone site that fails, and a --from without URLs, throw
// CommandError.
int RunSiteBatch(const SiteBatch& batch, const SiteRunner& runSite);

// Whether Ctrl-C came during the batch: a site cut short says it is partial.
bool SiteBatchInterrupted();

// While it lives, Ctrl-C calls stop once, from another thread; at once when
// Ctrl-C came already.
class StopOnInterrupt {
 public:
  explicit StopOnInterrupt(std::function<void()> stop);
  ~StopOnInterrupt();
  StopOnInterrupt(const StopOnInterrupt&) = delete;
  StopOnInterrupt& operator=(const StopOnInterrupt&) = delete;

 private:
  std::function<void()> stop;
};
