#pragma once

// Runs orvwebpage-sample-site for a test: on a free loopback port, with a
// request log in a fresh temporary folder, stopped and cleaned up when the
// object goes. Usage:
//   SampleSite site({"--profile", "fail5"});
//   ASSERT_TRUE(site.Ok()) << site.Error();
//   site.Url("/list?page=1");  site.TruePages();  site.LogLines();

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

extern char** environ;

class SampleSite {
 public:
  // args are passed on after "--port 0 --log FILE".
  explicit SampleSite(const std::vector<std::string>& args = {}, double startSeconds = 20) {
    char folder[] = "/tmp/orv-sample-site-XXXXXX";
    if (!mkdtemp(folder)) {
      error = "no temporary folder";
      return;
    }
    dir = folder;
    logPath = dir + "/requests.log";
    std::vector<std::string> argv = {Binary(), "--port", "0", "--log", logPath};
    argv.insert(argv.end(), args.begin(), args.end());
    Spawn(argv, startSeconds);
  }
  ~SampleSite() {
    Stop();
    if (!dir.empty()) {
      unlink(logPath.c_str());
      rmdir(dir.c_str());
    }
  }
  SampleSite(const SampleSite&) = delete;
  SampleSite& operator=(const SampleSite&) = delete;

  static std::string Binary() {
#ifdef ORV_BIN_DIR
    return std::string(ORV_BIN_DIR) + "/orvwebpage-sample-site";
#else
    return "orvwebpage-sample-site";
#endif
  }

  bool Ok() const { return error.empty(); }
  const std::string& Error() const { return error; }
  // The root, "http://127.0.0.1:PORT/", or path joined to it ("/list?page=1").
  std::string Url(const std::string& path = "/") const {
    return root.empty() ? root : root + (path.empty() || path[0] != '/' ? path : path.substr(1));
  }
  long long TruePages() const { return truePages; }
  const std::string& LogPath() const { return logPath; }
  // The request targets served so far, in order ("/list?page=100").
  std::vector<std::string> LogLines() const {
    std::vector<std::string> lines;
    std::ifstream in(logPath);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
  void ClearLog() const { std::ofstream(logPath, std::ios::trunc); }

  // SIGTERM, then SIGKILL if it has not ended within two seconds.
  void Stop() {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    int status = 0;
    for (int i = 0; i < 200; ++i) {
      if (waitpid(pid, &status, WNOHANG) == pid) {
        pid = -1;
        break;
      }
      usleep(10000);
    }
    if (pid > 0) {
      kill(pid, SIGKILL);
      waitpid(pid, &status, 0);
      pid = -1;
    }
    if (out >= 0) close(out);
    out = -1;
  }

 private:
  void Spawn(const std::vector<std::string>& argv, double startSeconds) {
    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
      error = "no pipe";
      return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    int failed = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    out = pipeFds[0];
    if (failed) {
      pid = -1;
      error = "cannot start " + argv[0];
      return;
    }
    // The first line comes once the port is bound.
    std::string line;
    auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(startSeconds);
    while (line.find('\n') == std::string::npos) {
      int left = int(std::chrono::duration_cast<std::chrono::milliseconds>(
                         until - std::chrono::steady_clock::now())
                         .count());
      pollfd ready{out, POLLIN, 0};
      if (left <= 0 || poll(&ready, 1, left) <= 0) {
        error = "no first line in time";
        return;
      }
      char buffer[256];
      ssize_t got = read(out, buffer, sizeof buffer);
      if (got <= 0) {
        error = "the site ended before its first line";
        return;
      }
      line.append(buffer, size_t(got));
    }
    line.resize(line.find('\n'));
    size_t blank = line.find(' ');
    if (blank == std::string::npos || line.rfind("http://127.0.0.1:", 0) != 0) {
      error = "unexpected first line: " + line;
      return;
    }
    root = line.substr(0, blank);
    truePages = std::atoll(line.c_str() + blank + 1);
  }

  pid_t pid = -1;
  int out = -1;
  std::string dir, logPath, root, error;
  long long truePages = -1;
};
