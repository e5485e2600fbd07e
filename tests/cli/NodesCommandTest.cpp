// `orvwebpage nodes`: the classes of visible texts of a page from a file, from
// stdin and over loopback HTTP, and the errors.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "support/RunTool.h"

namespace {

const char* kPage =
    "<html><head><meta charset=utf-8><title>Shop</title><script>var x = "
    "1;</script></head><body>Offers\n"
    "<ul><li class=\"item\"><a href=\"/1\">First</a> <b>new</b></li>\n"
    "<li class=\"item\"><a href=\"/2\">Caf\xC3\xA9   au\n lait</a></li></ul></body></html>";

const char* kClasses = R"({"classes":[
  {"items":["First","new","Café   au\n lait"]},
  {"items":["First","new","Café   au\n lait","Offers\n"]}]})";

ToolRun Nodes(std::vector<std::string> args) {
  args.insert(args.begin(), {ToolPath("orvwebpage"), "nodes"});
  return RunTool(args, 60);
}

// Serves one response to the first connection on a loopback port.
class OneShotServer {
 public:
  explicit OneShotServer(std::string response) {
    listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        listen(listener, 1) == 0 &&
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0)
      port = ntohs(address.sin_port);
    worker = std::thread([this, response] {
      int client = accept(listener, nullptr, nullptr);
      if (client < 0) return;
      std::string request;
      char buffer[4096];
      while (request.find("\r\n\r\n") == std::string::npos) {
        ssize_t got = read(client, buffer, sizeof buffer);
        if (got <= 0) break;
        request.append(buffer, size_t(got));
      }
      ssize_t sent = write(client, response.data(), response.size());
      (void)sent;
      close(client);
    });
  }
  ~OneShotServer() {
    shutdown(listener, SHUT_RDWR);
    close(listener);
    worker.join();
  }
  std::string Url() const { return "http://127.0.0.1:" + std::to_string(port) + "/page"; }

 private:
  int listener = -1;
  int port = 0;
  std::thread worker;
};

std::string Response(const std::string& status, const std::string& body) {
  return "HTTP/1.1 " + status + "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace

TEST(NodesCommand, JsonClassesPageLast) {
  TempFile page(kPage);
  ToolRun run = Nodes({"--json", page.path});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(nlohmann::json::parse(run.out), nlohmann::json::parse(kClasses));
}

TEST(NodesCommand, ReadableForm) {
  TempFile page(kPage);
  ToolRun run = Nodes({page.path});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "2 classes, 4 visible texts\n"
            "\nblock 0 (3 texts)\n  First\n  new\n  Caf\xC3\xA9 au lait\n"
            "\npage (4 texts)\n  First\n  new\n  Caf\xC3\xA9 au lait\n  Offers\n");
}

// The page's charset decides how its bytes read, as a browser decides it; the
// output is UTF-8.
TEST(NodesCommand, DecodesByTheDeclaredCharset) {
  OneShotServer http(
      "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=windows-1251\r\n"
      "Connection: close\r\n\r\n<meta charset=utf-8><body>\xCF\xF0\xE8</body>");
  TempFile declared("<meta charset=windows-1251><body>\xCF\xF0\xE8</body>");
  TempFile undeclared("<body>\xD0\x9F\xD1\x80\xD0\xB8</body>");
  struct Case {
    const char* what;
    std::string source;
  } cases[] = {
      {"meta declaration", declared.path},
      {"valid UTF-8 without a declaration", undeclared.path},
      {"HTTP charset before meta", http.Url()},
  };
  for (const Case& c : cases) {
    ToolRun run = Nodes({"--json", c.source});
    ASSERT_EQ(run.status, 0) << c.what << ": " << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out),
              nlohmann::json::parse(R"({"classes":[{"items":["При"]}]})"))
        << c.what;
  }
}

TEST(NodesCommand, PagesWithoutVisibleText) {
  struct Case {
    std::vector<std::string> args;
    std::string out;
  } cases[] = {
      {{"--json", "-"}, "{\n  \"classes\": []\n}\n"},
      {{"-"}, "0 classes, 0 visible texts\n"},
  };
  for (const auto& c : cases) {
    ToolRun run = Nodes(c.args);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, c.out);
  }
}

TEST(NodesCommand, FetchesAPageOverHttp) {
  OneShotServer server(Response("200 OK", kPage));
  ToolRun run = Nodes({"--json", server.Url()});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(nlohmann::json::parse(run.out), nlohmann::json::parse(kClasses));
}

TEST(NodesCommand, ErrorsGiveOneLine) {
  OneShotServer missing(Response("404 Not Found", "<p>gone</p>"));
  struct Case {
    const char* name;
    std::vector<std::string> args;
    int status;
  } cases[] = {
      {"no page", {}, 2},
      {"two pages", {"a.html", "b.html"}, 2},
      {"unknown option", {"--depth", "3", "a.html"}, 2},
      {"missing file", {"/nonexistent/page.html"}, 1},
      {"server answers 404", {missing.Url()}, 1},
      {"nobody listens", {"http://127.0.0.1:1/"}, 1},
  };
  for (const auto& c : cases) {
    ToolRun run = Nodes(c.args);
    EXPECT_EQ(run.status, c.status) << c.name << ": " << run.err;
    EXPECT_TRUE(run.out.empty()) << c.name << ": " << run.out;
    EXPECT_FALSE(run.err.empty()) << c.name;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << c.name << ": " << run.err;
  }
}
