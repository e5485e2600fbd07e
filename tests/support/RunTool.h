#pragma once

// Runs a built tool as a child process with a hard time limit, capturing its
// output. stderr can be a pseudo-terminal, to see what the tool does when a
// person watches.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

extern char** environ;

struct ToolRun {
  int status = -1;      // exit status, or -1 when it did not exit normally
  bool killed = false;  // still running at the limit, so it was killed
  double seconds = 0;   // wall time until it ended or was killed
  std::string out, err;
};

// The width of the pseudo-terminal RunTool gives as stderr.
constexpr int kTerminalColumns = 60;

inline std::string ToolPath(const std::string& name) { return ORV_BIN_DIR "/" + name; }

// Starts args[0] with stdin read from inPath, stdout on out and stderr on err
// (kept when err is -1). Gives the child's id, or -1.
inline pid_t SpawnTool(const std::vector<std::string>& args, const std::string& inPath, int out,
                       int err) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, inPath.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, out, 1);
  if (err >= 0) posix_spawn_file_actions_adddup2(&actions, err, 2);
  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  pid_t pid = -1;
  if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid = -1;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

// args[0] is the program's path. started, when given, is told the child's id
// once it runs.
inline ToolRun RunTool(const std::vector<std::string>& args, double limitSeconds,
                       bool stderrIsTerminal = false, const std::string& inPath = "/dev/null",
                       const std::function<void(pid_t)>& started = nullptr) {
  ToolRun run;
  int out[2] = {-1, -1}, err[2] = {-1, -1};
  if (pipe2(out, O_CLOEXEC) != 0) return run;
  if (!stderrIsTerminal) {
    if (pipe2(err, O_CLOEXEC) != 0) err[0] = err[1] = -1;
  } else if ((err[0] = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) >= 0 && grantpt(err[0]) == 0 &&
             unlockpt(err[0]) == 0) {
    err[1] = open(ptsname(err[0]), O_RDWR | O_NOCTTY | O_CLOEXEC);
    winsize size{};
    size.ws_col = kTerminalColumns;
    ioctl(err[0], TIOCSWINSZ, &size);
  }
  auto start = std::chrono::steady_clock::now();
  pid_t pid = err[1] < 0 ? -1 : SpawnTool(args, inPath, out[1], err[1]);
  if (pid > 0 && started) started(pid);
  for (int fd : {out[1], err[1]})
    if (fd >= 0) close(fd);
  int fds[2] = {out[0], err[0]};
  std::string* sinks[2] = {&run.out, &run.err};
  // A pipe ends at end of file, a pseudo-terminal with an error once the child
  // is gone.
  while (pid > 0 && (fds[0] >= 0 || fds[1] >= 0)) {
    auto left =
        std::chrono::duration<double>(limitSeconds) - (std::chrono::steady_clock::now() - start);
    if (left.count() <= 0) {
      kill(pid, SIGKILL);
      run.killed = true;
      break;
    }
    pollfd polls[2] = {{fds[0], POLLIN, 0}, {fds[1], POLLIN, 0}};
    poll(polls, 2, int(left.count() * 1000) + 1);
    for (int i = 0; i < 2; i++) {
      char buffer[4096];
      ssize_t got = polls[i].revents ? read(fds[i], buffer, sizeof buffer) : -1;
      if (got > 0) sinks[i]->append(buffer, size_t(got));
      if (polls[i].revents && (got == 0 || (got < 0 && errno != EINTR))) close(fds[i]), fds[i] = -1;
    }
  }
  for (int fd : fds)
    if (fd >= 0) close(fd);
  int status = 0;
  if (pid > 0 && waitpid(pid, &status, 0) == pid && !run.killed && WIFEXITED(status))
    run.status = WEXITSTATUS(status);
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return run;
}

// A file holding text, removed when the test is done with it.
struct TempFile {
  std::string path;
  explicit TempFile(const std::string& text) {
    char name[] = "/tmp/orv-test-XXXXXX";
    int fd = mkstemp(name);
    if (fd >= 0) close(fd);
    path = name;
    std::ofstream(path, std::ios::binary) << text;
  }
  ~TempFile() { std::remove(path.c_str()); }
};
