#pragma once

// Servers on 127.0.0.1 that misbehave on purpose. Each runs on threads of the
// test process, on a port the system picks, and stops when destroyed; every
// loop that could go on forever also watches the stop flag.

#include <arpa/inet.h>
#include <httplib.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/LocalServers.h"

// Sleeps in short steps so a stop is never kept waiting long.
inline bool SleepUnlessStopped(const std::atomic<bool>& stopping, int milliseconds) {
  for (int waited = 0; waited < milliseconds && !stopping; waited += 20)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  return !stopping;
}

using HttpTestServer = LocalHttpServer;

// A bare TCP server: each connection gets the request read (up to its blank
// line) and is then handed to `answer`, which writes whatever it likes.
class RawTestServer {
 public:
  using Answer = std::function<void(int fd, const std::atomic<bool>& stopping)>;

  explicit RawTestServer(Answer answer) : answer(std::move(answer)) {}
  ~RawTestServer() { Stop(); }

  bool Start() {
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) return false;
    int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 16) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      return false;
    port = ntohs(address.sin_port);
    acceptor = std::thread([this] { AcceptLoop(); });
    return true;
  }
  void Stop() {
    stopping = true;
    if (acceptor.joinable()) acceptor.join();
    std::lock_guard<std::mutex> lock(mutex);
    for (auto& t : workers)
      if (t.joinable()) t.join();
    workers.clear();
    if (listener >= 0) close(listener);
    listener = -1;
  }
  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port) + path;
  }

  std::atomic<int> connections{0};

 private:
  void AcceptLoop() {
    while (!stopping) {
      pollfd p{listener, POLLIN, 0};
      if (poll(&p, 1, 50) <= 0) continue;
      int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (fd < 0) continue;
      ++connections;
      std::lock_guard<std::mutex> lock(mutex);
      workers.emplace_back([this, fd] {
        ReadRequestHead(fd);
        answer(fd, stopping);
        shutdown(fd, SHUT_RDWR);
        close(fd);
      });
    }
  }
  void ReadRequestHead(int fd) {
    std::string head;
    char buffer[1024];
    for (int rounds = 0; rounds < 100 && !stopping; ++rounds) {
      pollfd p{fd, POLLIN, 0};
      if (poll(&p, 1, 50) <= 0) continue;
      ssize_t got = recv(fd, buffer, sizeof buffer, 0);
      if (got <= 0) return;
      head.append(buffer, static_cast<size_t>(got));
      if (head.find("\r\n\r\n") != std::string::npos || head.size() > 65536) return;
    }
  }

  Answer answer;
  std::atomic<bool> stopping{false};
  int listener = -1;
  int port = 0;
  std::thread acceptor;
  std::mutex mutex;
  std::vector<std::thread> workers;
};

// Writes all of text unless the peer went away or a stop came.
inline bool SendAll(int fd, const std::string& text, const std::atomic<bool>& stopping) {
  size_t sent = 0;
  while (sent < text.size() && !stopping) {
    ssize_t n = send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (n <= 0) return false;
    sent += static_cast<size_t>(n);
  }
  return sent == text.size();
}
