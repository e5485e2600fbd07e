#pragma once

// Runs a built tool as a child process with a hard time limit, capturing its
// output. Tests use it to check exit statuses, what lands on stdout and stderr,
// and that a command ends in time. stderr can be a pseudo-terminal, to see
// what the tool does when a person watches.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

extern char** environ;

struct ToolRun {
  int status = -1;      // exit status, or -1 when it did not exit normally
  bool killed = false;  // still running at the limit, so it was killed
  double seconds = 0;   // wall time until it ended or was killed
  std::string out;
  std::string err;
};

inline std::string ToolPath(const std::string& name) {
#ifdef ORV_BIN_DIR
  return std::string(ORV_BIN_DIR) + "/" + name;
#else
  return name;
#endif
}

// args[0] is the program's path. stdin is /dev/null.
inline ToolRun RunTool(const std::vector<std::string>& args, double limitSeconds,
                       bool stderrIsTerminal = false) {
  ToolRun run;
  int outPipe[2];
  int errPipe[2] = {-1, -1};
  int master = -1;
  if (pipe2(outPipe, O_CLOEXEC) != 0) return run;
  std::string slavePath;
  if (stderrIsTerminal) {
    master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0 || !ptsname(master)) {
      if (master >= 0) close(master);
      close(outPipe[0]);
      close(outPipe[1]);
      return run;
    }
    slavePath = ptsname(master);
  } else if (pipe2(errPipe, O_CLOEXEC) != 0) {
    close(outPipe[0]);
    close(outPipe[1]);
    return run;
  }

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, outPipe[1], 1);
  if (stderrIsTerminal)
    posix_spawn_file_actions_addopen(&actions, 2, slavePath.c_str(), O_RDWR | O_NOCTTY, 0);
  else
    posix_spawn_file_actions_adddup2(&actions, errPipe[1], 2);

  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);

  auto start = std::chrono::steady_clock::now();
  pid_t pid = -1;
  int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(outPipe[1]);
  if (errPipe[1] >= 0) close(errPipe[1]);
  if (spawned != 0) {
    close(outPipe[0]);
    if (errPipe[0] >= 0) close(errPipe[0]);
    if (master >= 0) close(master);
    return run;
  }

  int errRead = stderrIsTerminal ? master : errPipe[0];
  int fds[2] = {outPipe[0], errRead};
  std::string* sinks[2] = {&run.out, &run.err};
  auto elapsed = [&] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  int status = 0;
  bool exited = false;
  while (true) {
    if (!exited && waitpid(pid, &status, WNOHANG) == pid) exited = true;
    if (exited && fds[0] < 0 && fds[1] < 0) break;
    double left = limitSeconds - elapsed();
    if (!exited && left <= 0) {
      kill(pid, SIGKILL);
      waitpid(pid, &status, 0);
      exited = true;
      run.killed = true;
    }
    pollfd polls[2];
    int n = 0;
    int which[2];
    for (int i = 0; i < 2; ++i)
      if (fds[i] >= 0) {
        polls[n] = {fds[i], POLLIN, 0};
        which[n++] = i;
      }
    if (n == 0) {
      if (!exited) {
        usleep(10000);
        continue;
      }
      break;
    }
    int ready = poll(polls, n, exited ? 50 : 20);
    if (ready < 0 && errno != EINTR) break;
    bool any = false;
    for (int k = 0; k < n && ready > 0; ++k) {
      if (!(polls[k].revents & (POLLIN | POLLHUP | POLLERR))) continue;
      char buffer[4096];
      ssize_t got = read(polls[k].fd, buffer, sizeof buffer);
      int i = which[k];
      if (got > 0) {
        sinks[i]->append(buffer, static_cast<size_t>(got));
        any = true;
      } else if (got == 0 || (errno != EINTR && errno != EAGAIN)) {
        close(fds[i]);
        fds[i] = -1;
      }
    }
    // Once the child is gone, stop at the first quiet moment: a pseudo-terminal
    // or a pipe inherited by a grandchild may never report end of file.
    if (exited && !any && ready <= 0) break;
  }
  for (int fd : fds)
    if (fd >= 0) close(fd);
  run.seconds = elapsed();
  if (!run.killed && WIFEXITED(status)) run.status = WEXITSTATUS(status);
  return run;
}

// A file holding text, removed when the test is done with it.
struct TempFile {
  std::string path;
  explicit TempFile(const std::string& text) {
    char name[] = "/tmp/orv-test-XXXXXX";
    int fd = mkstemp(name);
    path = name;
    if (fd < 0) return;
    for (size_t done = 0; done < text.size();) {
      ssize_t n = write(fd, text.data() + done, text.size() - done);
      if (n <= 0) break;
      done += size_t(n);
    }
    close(fd);
  }
  ~TempFile() { std::remove(path.c_str()); }
};
