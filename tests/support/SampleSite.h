#pragma once

// Runs orvwebpage-sample-site for a test: on a free loopback port, with a
// request log in a fresh temporary folder, stopped and cleaned up when the
// object goes. Usage:
//   SampleSite site({"--profile", "fail5"});
//   ASSERT_TRUE(site.Ok()) << site.Error();
//   site.Url("/list?page=1");  site.TruePages();  site.LogLines();

#include "support/RunTool.h"

class SampleSite {
 public:
  // args are passed on after "--port 0 --log FILE".
  explicit SampleSite(const std::vector<std::string>& args = {}, double startSeconds = 20) {
    char folder[] = "/tmp/orv-sample-site-XXXXXX";
    int pipeFds[2];
    if (!mkdtemp(folder) || pipe2(pipeFds, O_CLOEXEC) != 0) {
      error = "no temporary folder or pipe";
      return;
    }
    dir = folder;
    logPath = dir + "/requests.log";
    std::vector<std::string> argv = {ToolPath("orvwebpage-sample-site"), "--port", "0", "--log",
                                     logPath};
    argv.insert(argv.end(), args.begin(), args.end());
    pid = SpawnTool(argv, "/dev/null", pipeFds[1], -1);
    close(pipeFds[1]);
    out = pipeFds[0];
    // The first line, "ROOT TRUE-COUNT", comes once the port is bound.
    std::string line;
    auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(startSeconds);
    while (pid > 0 && (line.empty() || line.back() != '\n')) {
      auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
          until - std::chrono::steady_clock::now());
      pollfd ready{out, POLLIN, 0};
      char c;
      if (left.count() <= 0 || poll(&ready, 1, int(left.count())) <= 0 || read(out, &c, 1) != 1)
        break;
      line += c;
    }
    size_t blank = line.find(' ');
    if (line.rfind("http://127.0.0.1:", 0) != 0 || blank == std::string::npos) {
      error = "the site did not start: " + line;
      return;
    }
    root = line.substr(0, blank);
    truePages = std::atoll(line.c_str() + blank + 1);
  }
  ~SampleSite() {
    Stop();
    if (!dir.empty()) unlink(logPath.c_str()), rmdir(dir.c_str());
  }
  SampleSite(const SampleSite&) = delete;
  SampleSite& operator=(const SampleSite&) = delete;

  bool Ok() const { return error.empty(); }
  const std::string& Error() const { return error; }
  // The root, "http://127.0.0.1:PORT/", or path joined to it ("/list?page=1").
  std::string Url(const std::string& path = "/") const {
    return root.empty() ? root : root + (path.empty() || path[0] != '/' ? path : path.substr(1));
  }
  long long TruePages() const { return truePages; }
  // The request targets served so far, in order ("/list?page=100").
  std::vector<std::string> LogLines() const {
    std::vector<std::string> lines;
    std::ifstream in(logPath);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

  // SIGTERM, then SIGKILL if it has not ended within two seconds.
  void Stop() {
    if (pid > 0) kill(pid, SIGTERM);
    for (int i = 0; pid > 0 && i < 200; i++, usleep(10000))
      if (waitpid(pid, nullptr, WNOHANG) == pid) pid = -1;
    if (pid > 0) kill(pid, SIGKILL), waitpid(pid, nullptr, 0);
    pid = -1;
    if (out >= 0) close(out);
    out = -1;
  }

 private:
  pid_t pid = -1;
  int out = -1;
  std::string dir, logPath, root, error;
  long long truePages = -1;
};
