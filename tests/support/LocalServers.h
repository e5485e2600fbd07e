#pragma once

// Servers on 127.0.0.1 for tests, on a port the system picks: cpp-httplib for
// well-formed answers, a bare socket for anything else. Both stop when
// destroyed, and every wait inside them watches the stop flag.

#include <arpa/inet.h>
#include <httplib.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

inline bool PauseUnlessStopping(const std::atomic<bool>& stopping, int milliseconds) {
  for (int waited = 0; waited < milliseconds && !stopping; waited += 5)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return !stopping;
}

// Writes all of text unless the peer went away.
inline void SendText(int fd, const std::string& text) {
  for (size_t sent = 0; sent < text.size();) {
    ssize_t n = send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (n <= 0) return;
    sent += size_t(n);
  }
}

class LocalHttpServer {
 public:
  httplib::Server server;  // add handlers, then Start
  std::atomic<bool> stopping{false};
  std::atomic<int> hits{0};  // requests received, counted before any answer goes out

  LocalHttpServer() {
    server.set_keep_alive_timeout(1);
    // Headers and body go out in two writes; without this the second waits for
    // the client's delayed acknowledgement on a reused connection.
    server.set_tcp_nodelay(true);
    server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response&) {
      std::lock_guard<std::mutex> hold(lock);
      targets.push_back(request.target);
      ++hits;
      return httplib::Server::HandlerResponse::Unhandled;
    });
  }
  ~LocalHttpServer() {
    stopping = true;
    if (thread.joinable()) server.stop(), thread.join();
  }

  bool Start() {
    port = server.bind_to_any_port("127.0.0.1");  // -1 leaves the server not running
    thread = std::thread([this] { server.listen_after_bind(); });
    for (int i = 0; i < 1000 && !server.is_running(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return server.is_running();
  }
  // host: another name for the loopback address gives another host text.
  std::string Url(const std::string& path, const std::string& host = "127.0.0.1") const {
    return "http://" + host + ":" + std::to_string(port) + path;
  }
  // The request targets ("/list?page=2") in the order they came.
  std::vector<std::string> Targets() {
    std::lock_guard<std::mutex> hold(lock);
    return targets;
  }

 private:
  int port = 0;
  std::thread thread;
  std::mutex lock;
  std::vector<std::string> targets;
};

// Takes connections one after the other and hands each to answer, which
// writes what it likes.
class RawSocketServer {
 public:
  using Answer = std::function<void(int fd, const std::atomic<bool>& stopping)>;

  explicit RawSocketServer(Answer respond) : answer(std::move(respond)) {}
  // The same bytes for every connection.
  explicit RawSocketServer(std::string reply)
      : answer([reply](int fd, const std::atomic<bool>&) { SendText(fd, reply); }) {}
  ~RawSocketServer() {
    stopping = true;
    if (thread.joinable()) thread.join();
    if (listener >= 0) close(listener);
  }

  bool Start() {
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof address;
    if (listener < 0 || bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listener, 8) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      return false;
    port = ntohs(address.sin_port);
    thread = std::thread([this] {
      while (!stopping) {
        pollfd ready{listener, POLLIN, 0};
        int fd = poll(&ready, 1, 20) > 0 ? accept4(listener, nullptr, nullptr, SOCK_CLOEXEC) : -1;
        if (fd < 0) continue;
        // The request is not looked at: whatever of it came within a second is read.
        char request[65536];
        pollfd in{fd, POLLIN, 0};
        if (poll(&in, 1, 1000) > 0 && recv(fd, request, sizeof request, 0) >= 0)
          answer(fd, stopping);
        shutdown(fd, SHUT_RDWR);
        close(fd);
      }
    });
    return true;
  }
  std::string Url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port) + path;
  }

 private:
  Answer answer;
  std::atomic<bool> stopping{false};
  int listener = -1;
  int port = 0;
  std::thread thread;
};
