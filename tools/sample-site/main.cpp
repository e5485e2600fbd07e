// orvwebpage-sample-site: serves a generated web site on 127.0.0.1 and prints
// "URL truecount" on its first line, for demos, tests and benchmarks.
#include <httplib.h>
#include <signal.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

#include "SiteCrawl.h"
#include "SiteProfile.h"
#include "SiteRender.h"
#include "SiteRequest.h"

namespace {

std::string ProfileHelp() {
  std::string text = "Profiles:\n";
  for (const SiteProfileInfo& info : SiteProfiles()) {
    std::string name = info.name;
    name.resize(10, ' ');
    text += "  " + name + info.summary + "\n";
  }
  text +=
      "\nThe first line of output is the site's address and the number of distinct HTML pages\n"
      "a full crawl from \"/\" finds, e.g. \"http://127.0.0.1:40123/ 11700\". The server stops on\n"
      "SIGINT or SIGTERM.";
  return text;
}

// Request log: one line per request, its target as sent, written before the
// answer goes out so a client that has its answer can read the line.
class RequestLog {
 public:
  bool Open(const std::string& path) {
    // Appending, so a reader may truncate the file between requests.
    file = std::fopen(path.c_str(), "w");
    if (file) {
      std::fclose(file);
      file = std::fopen(path.c_str(), "a");
    }
    return file != nullptr;
  }
  ~RequestLog() {
    if (file) std::fclose(file);
  }
  void Write(const std::string& target) {
    if (!file) return;
    std::lock_guard<std::mutex> hold(lock);
    std::fwrite(target.data(), 1, target.size(), file);
    std::fputc('\n', file);
    std::fflush(file);
  }

 private:
  std::FILE* file = nullptr;
  std::mutex lock;
};

struct SiteOptions {
  int port = 0;
  uint64_t seed = 1;
  std::string profileName = "mixed";
  std::string logPath;
  int64_t pages = 12000;
  int latencyMs = 0;
};

void AddOptions(CLI::App& app, SiteOptions& options) {
  app.add_option("--port", options.port, "port to listen on; 0 picks a free one")
      ->check(CLI::Range(0, 65535));
  app.add_option("--seed", options.seed, "seed of the generated content (same seed, same site)");
  std::vector<std::string> names;
  for (const SiteProfileInfo& info : SiteProfiles()) names.push_back(info.name);
  app.add_option("--profile", options.profileName, "kind of site, see below")
      ->check(CLI::IsMember(names));
  app.add_option("--log", options.logPath,
                 "file that gets one line per request: its path and query");
  app.add_option("--pages", options.pages, "about how many pages the mixed profile has")
      ->check(CLI::Range(int64_t(1), int64_t(5000000)));
  app.add_option("--latency", options.latencyMs,
                 "milliseconds every answer waits before it goes out, as a far server's would")
      ->check(CLI::Range(0, 60000));
  app.footer(ProfileHelp());
}

// Signals go to one waiting thread, which stops the server in an orderly way.
sigset_t BlockStopSignals() {
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  sigaddset(&stopSignals, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  signal(SIGPIPE, SIG_IGN);
  return stopSignals;
}

// Binds to 127.0.0.1 (any free port for 0); the port bound, or -1.
int Bind(httplib::Server& server, int port) {
  if (port == 0) return server.bind_to_any_port("127.0.0.1");
  return server.bind_to_port("127.0.0.1", port) ? port : -1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Serves a generated web site on 127.0.0.1."};
  SiteOptions options;
  AddOptions(app, options);
  // Usage errors exit 2, as the orvwebpage tool's do.
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "orvwebpage-sample-site: %s\n", e.what());
    return 2;
  }

  std::unique_ptr<SiteProfile> profile =
      MakeSiteProfile(options.profileName, options.seed, options.pages);
  if (!profile) {
    std::fprintf(stderr, "unknown profile: %s\n", options.profileName.c_str());
    return 2;
  }
  RequestLog log;
  if (!options.logPath.empty() && !log.Open(options.logPath)) {
    std::fprintf(stderr, "cannot write the log file %s\n", options.logPath.c_str());
    return 1;
  }
  int64_t truePages = CountReachablePages(*profile);
  sigset_t stopSignals = BlockStopSignals();

  httplib::Server server;
  std::string root;  // set once bound, before the first request
  server.set_keep_alive_max_count(1000);
  server.set_keep_alive_timeout(2);
  server.set_tcp_nodelay(true);  // small answers must not wait for the next ACK
  server.Get(".*", [&](const httplib::Request& request, httplib::Response& response) {
    log.Write(request.target);
    if (options.latencyMs > 0)
      std::this_thread::sleep_for(std::chrono::milliseconds(options.latencyMs));
    SiteRequest target = ParseTarget(request.target);
    target.root = root;
    SitePage page = profile->Serve(target);
    response.status = page.status;
    response.set_content(RenderPage(page), page.contentType.c_str());
  });

  int bound = Bind(server, options.port);
  if (bound <= 0) {
    std::fprintf(stderr, "cannot listen on 127.0.0.1 port %d\n", options.port);
    return 1;
  }
  root = "http://127.0.0.1:" + std::to_string(bound);
  std::printf("http://127.0.0.1:%d/ %lld\n", bound, static_cast<long long>(truePages));
  std::fflush(stdout);

  std::thread stopper([&] {
    int signalNumber = 0;
    sigwait(&stopSignals, &signalNumber);
    server.stop();
  });
  stopper.detach();
  server.listen_after_bind();
  return 0;
}
