#include "SiteBatch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string_view>
#include <thread>

#include "Command.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "ShownText.h"

namespace {

// The handler only sets a flag; a watcher thread does the stopping, which
// takes locks a handler must not take.
volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int) { interrupted = 1; }

std::mutex activeLock;
std::vector<std::function<void()>*> active;
bool stopping = false;  // under activeLock: the watcher has stopped them all

class InterruptWatch {
 public:
  InterruptWatch() {
    interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previous);
    watcher = std::thread([this] {
      while (!done.load()) {
        if (interrupted) {
          std::lock_guard<std::mutex> hold(activeLock);
          stopping = true;
          for (auto* stop : active) (*stop)();
          return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
  }
  ~InterruptWatch() {
    done = true;
    watcher.join();
    sigaction(SIGINT, &previous, nullptr);
    std::lock_guard<std::mutex> hold(activeLock);
    stopping = false;
  }

 private:
  struct sigaction previous = {};
  std::atomic<bool> done{false};
  std::thread watcher;
};

std::vector<std::string> EntryUrls(const SiteBatch& batch) {
  std::vector<std::string> urls = batch.urls;
  if (!batch.from.empty())
    ForEachInputLine(ReadInput(batch.from), [&](std::string_view line) {
      // Blanks around a URL are no part of it; a blank line names no site.
      size_t first = line.find_first_not_of(" \t"), last = line.find_last_not_of(" \t");
      if (first != std::string_view::npos) urls.emplace_back(line.substr(first, last - first + 1));
    });
  return urls;
}

// In a site of its own HTTP run, stopped by Ctrl-C.
SiteOutcome RunOne(const SiteRunner& runSite, const std::string& url, bool alone) {
  OrvHttpRun run;
  run.Bind();
  StopOnInterrupt stop([&run] { run.Stop(); });
  return runSite(url, alone, run);
}

// A site that could not be read, among others.
std::string ErrorText(const std::string& url, const std::string& error, bool json) {
  if (!json) return "url:      " + ShownText(url) + "\nerror:    " + ShownText(error) + "\n";
  nlohmann::ordered_json out;
  out["url"] = url;
  out["error"] = error;
  return JsonText(out, kOneLine);
}

}  // namespace

StopOnInterrupt::StopOnInterrupt(std::function<void()> stop) : stop(std::move(stop)) {
  std::lock_guard<std::mutex> hold(activeLock);
  if (stopping) this->stop();
  active.push_back(&this->stop);
}

StopOnInterrupt::~StopOnInterrupt() {
  std::lock_guard<std::mutex> hold(activeLock);
  active.erase(std::remove(active.begin(), active.end(), &stop), active.end());
}

bool SiteBatchInterrupted() { return interrupted != 0; }

void AddSiteBatchOptions(CLI::App* app, SiteBatch& batch, const std::string& measured,
                         const std::string& measure) {
  app->add_option("URL", batch.urls,
                  "entry URL of a site; several are " + measured + " one after another");
  app->add_option("--from", batch.from, "also read entry URLs from FILE, one a line (- for stdin)")
      ->type_name("FILE");
  app->add_option("--jobs", batch.jobs, measure + " N sites at once, each with its own limits")
      ->transform(WholeNumber(1, 256, "N"));
}

int RunSiteBatch(const SiteBatch& batch, const SiteRunner& runSite) {
  std::vector<std::string> urls = EntryUrls(batch);
  if (urls.empty() && batch.from.empty()) {
    std::cerr << "orvwebpage: URL is required" << std::endl;  // a usage error, like CLI11's
    return 2;
  }
  if (urls.empty()) throw CommandError("no URL in " + batch.from);
  InterruptWatch watch;
  if (urls.size() == 1 && batch.from.empty()) {
    SiteOutcome site = RunOne(runSite, urls[0], true);
    if (!site.error.empty()) throw CommandError(urls[0], site.error, batch.json);
    std::cout << site.text;
    return interrupted ? 130 : 0;
  }

  // Workers take the sites in input order.
  struct Site {
    SiteOutcome outcome;
    bool done = false;
  };
  std::vector<Site> sites(urls.size());
  std::mutex lock;
  size_t next = 0, printed = 0;
  bool failed = false;
  auto work = [&] {
    for (;;) {
      size_t i;
      {
        std::lock_guard<std::mutex> hold(lock);
        if (next >= urls.size() || interrupted) return;
        i = next++;
      }
      SiteOutcome outcome = RunOne(runSite, urls[i], false);
      std::lock_guard<std::mutex> hold(lock);
      sites[i].outcome = std::move(outcome);
      sites[i].done = true;
      for (; printed < sites.size() && sites[printed].done; printed++) {
        SiteOutcome& site = sites[printed].outcome;
        if (!site.error.empty()) {
          failed = true;
          std::cerr << "orvwebpage: cannot read " << ShownText(urls[printed]) << ": "
                    << ShownText(site.error) << std::endl;
          site.text = ErrorText(urls[printed], site.error, batch.json);
        }
        if (!batch.json && printed > 0) std::cout << "\n";
        std::cout << site.text << std::flush;
        site.text.clear();
      }
    }
  };
  size_t workers = std::min(urls.size(), size_t(batch.jobs));
  std::vector<std::thread> threads;
  for (size_t i = 1; i < workers; i++) threads.emplace_back(work);
  work();
  for (std::thread& t : threads) t.join();
  return interrupted ? 130 : failed ? 1 : 0;
}
