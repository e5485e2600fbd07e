#pragma once

// A small web site served from inside the test process on 127.0.0.1, on a port
// the system picks. Pages are functions of the query; the site keeps a log of
// every request target in the order they came, so a test can state which
// pages the estimator fetched and which page numbers it probed.

#include <httplib.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class EstimateSite {
 public:
  // Fills body and gives true, or gives false for a 404.
  using Page = std::function<bool(const httplib::Request& request, std::string& body)>;

  EstimateSite() {
    // Headers and body go out in two writes; without this the second waits
    // for the client's delayed acknowledgement on a reused connection.
    server.set_tcp_nodelay(true);
    server.Get(".*", [this](const httplib::Request& request, httplib::Response& response) {
      Page page;
      {
        std::lock_guard<std::mutex> hold(lock);
        log.push_back(request.target);
        auto found = pages.find(request.path);
        if (found != pages.end()) page = found->second;
      }
      std::string body;
      if (page && page(request, body)) {
        response.set_content(body, "text/html");
      } else {
        response.status = 404;
        response.set_content("<html><body><p>not here</p></body></html>", "text/html");
      }
    });
  }
  ~EstimateSite() { Stop(); }
  EstimateSite(const EstimateSite&) = delete;
  EstimateSite& operator=(const EstimateSite&) = delete;

  void Serve(const std::string& path, Page page) {
    std::lock_guard<std::mutex> hold(lock);
    pages[path] = std::move(page);
  }
  // A fixed page.
  void Serve(const std::string& path, const std::string& body) {
    Serve(path, [body](const httplib::Request&, std::string& out) {
      out = body;
      return true;
    });
  }

  bool Start() {
    port = server.bind_to_any_port("127.0.0.1");
    if (port <= 0) return false;
    thread = std::thread([this] { server.listen_after_bind(); });
    for (int i = 0; i < 1000 && !server.is_running(); i++)
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return server.is_running();
  }
  void Stop() {
    if (thread.joinable()) {
      server.stop();
      thread.join();
    }
  }

  std::string Url(const std::string& target) const {
    return "http://127.0.0.1:" + std::to_string(port) + target;
  }

  std::vector<std::string> Log() const {
    std::lock_guard<std::mutex> hold(lock);
    return log;
  }
  // The targets whose path is the given one, in order.
  std::vector<std::string> Log(const std::string& path) const {
    std::vector<std::string> out;
    for (const std::string& target : Log())
      if (target.substr(0, target.find('?')) == path) out.push_back(target);
    return out;
  }
  // The paths requested, sorted, one per request.
  std::vector<std::string> Paths() const {
    std::vector<std::string> out;
    for (const std::string& target : Log()) out.push_back(target.substr(0, target.find('?')));
    std::sort(out.begin(), out.end());
    return out;
  }

 private:
  httplib::Server server;
  std::thread thread;
  int port = 0;
  mutable std::mutex lock;
  std::map<std::string, Page> pages;
  std::vector<std::string> log;
};

inline std::string Html(const std::string& body) {
  return "<!DOCTYPE html><html><head><title>t</title></head><body>" + body + "</body></html>";
}

inline std::string Link(const std::string& href, const std::string& text) {
  return "<a href=\"" + href + "\">" + text + "</a>";
}

// Two paragraphs of long text: what makes a content page.
inline std::string ArticleText() {
  std::string words(90, 'w');
  return "<div><p>" + words + "</p><p>" + words + "</p></div>";
}

// A paged listing. Page n's page parameter is offset + (n - 1) * step; its
// pager links the pages of its window but itself, which stands as plain text;
// its items link itemPath?item=..., a shape of its own.
struct Listing {
  std::string path = "/list";
  std::string param = "page";
  int step = 1;
  int offset = 1;
  int pages = 13;
  bool lastForHigher = false;  // else pages past the end are 404
  int window = 0;              // 0: every page; else n - window .. n + window
  int items = 0;
  std::string itemPath = "/item";

  std::string Href(int n) const {
    return path + "?" + param + "=" + std::to_string(offset + (n - 1) * step);
  }

  bool Render(const httplib::Request& request, std::string& body) const {
    if (!request.has_param(param.c_str())) return false;
    long value = std::strtol(request.get_param_value(param.c_str()).c_str(), nullptr, 10);
    long n = (value - offset) / step + 1;
    if (n < 1) return false;
    if (n > pages) {
      if (!lastForHigher) return false;
      n = pages;
    }
    std::string pager = "<div class=\"pager\">";
    long first = window ? n - window : 1;
    long last = window ? n + window : pages;
    for (long m = first < 1 ? 1 : first; m <= last; m++) {
      if (m == n)
        pager += "<span>" + std::to_string(m) + "</span>";
      else
        pager += Link(Href(int(m)), std::to_string(m));
    }
    pager += "</div>";
    std::string list = "<ul>";
    for (int i = 1; i <= items; i++)
      list +=
          "<li>" +
          Link(itemPath + "?item=" + std::to_string(n * 1000 + i), "Item " + std::to_string(i)) +
          "</li>";
    list += "</ul>";
    body = Html(list + pager);
    return true;
  }
};

inline void ServeListing(EstimateSite& site, const Listing& listing) {
  site.Serve(listing.path, [listing](const httplib::Request& request, std::string& body) {
    return listing.Render(request, body);
  });
}
