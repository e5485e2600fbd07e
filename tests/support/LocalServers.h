#pragma once

// Servers on 127.0.0.1 for tests: cpp-httplib for well-formed answers, a bare
// socket for anything else. Both take a free port and stop
// when destroyed; every wait inside them watches the stop flag.

#include <arpa/inet.h>
#include <httplib.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

inline bool PauseUnlessStopping(const std::atomic<bool>& stopping, int milliseconds) {
  auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (!stopping && std::chrono::steady_clock::now() < until)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return !stopping;
}

class LocalHttpServer {
 public:
  httplib::Server server;
  std::atomic<bool> stopping{false};
  std::atomic<int> hits{0};  // requests received, counted before any answer goes out

  LocalHttpServer() {
    server.set_keep_alive_timeout(1);
    server.set_tcp_nodelay(true);
    server.set_pre_routing_handler([this](const httplib::Request&, httplib::Response&) {
      ++hits;
      return httplib::Server::HandlerResponse::Unhandled;
    });
  }
  ~LocalHttpServer() { Stop(); }

  // Call once the handlers are in place.
  bool Start() {
    port = server.bind_to_any_port("127.0.0.1");
    if (port <= 0) return false;
    thread = std::thread([this] { server.listen_after_bind(); });
    for (int i = 0; i < 1000 && !server.is_running(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return server.is_running();
  }
  void Stop() {
    stopping = true;
    if (thread.joinable()) {
      server.stop();
      thread.join();
    }
  }
  // host: another name for the loopback address gives another host text.
  std::string Url(const std::string& path, const std::string& host = "127.0.0.1") const {
    return "http://" + host + ":" + std::to_string(port) + path;
  }

 private:
  int port = 0;
  std::thread thread;
};

// Accepts connections one after the other; each gets its request read up to
// the blank line and is then handed to answer, which writes what it likes.
class RawSocketServer {
 public:
  using Answer = std::function<void(int fd, const std::atomic<bool>& stopping)>;

  explicit RawSocketServer(Answer answer) : answer(std::move(answer)) {}
  ~RawSocketServer() {
    stopping = true;
    if (thread.joinable()) thread.join();
    if (listener >= 0) close(listener);
  }

  bool Start() {
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 8) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      return false;
    port = ntohs(address.sin_port);
    thread = std::thread([this] { Serve(); });
    return true;
  }
  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port) + path;
  }

 private:
  void Serve() {
    while (!stopping) {
      pollfd ready{listener, POLLIN, 0};
      if (poll(&ready, 1, 20) <= 0) continue;
      int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (fd < 0) continue;
      std::string head;
      char buffer[2048];
      while (!stopping && head.find("\r\n\r\n") == std::string::npos && head.size() < 65536) {
        pollfd in{fd, POLLIN, 0};
        if (poll(&in, 1, 20) <= 0) continue;
        ssize_t got = recv(fd, buffer, sizeof buffer, 0);
        if (got <= 0) break;
        head.append(buffer, size_t(got));
      }
      answer(fd, stopping);
      shutdown(fd, SHUT_RDWR);
      close(fd);
    }
  }

  Answer answer;
  std::atomic<bool> stopping{false};
  int listener = -1;
  int port = 0;
  std::thread thread;
};

inline void SendText(int fd, const std::string& text) {
  size_t sent = 0;
  while (sent < text.size()) {
    ssize_t n = send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (n <= 0) return;
    sent += size_t(n);
  }
}
