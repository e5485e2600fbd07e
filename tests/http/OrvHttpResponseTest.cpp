#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "http/HttpTestSupport.h"

namespace {

std::string Gzip(const std::string& text) {
  std::string out;
  httplib::detail::gzip_compressor compressor;
  compressor.compress(text.data(), text.size(), true, [&](const char* data, size_t n) {
    out.append(data, n);
    return true;
  });
  return out;
}

// A zlib stream of stored blocks: what HTTP calls deflate, without needing a compressor.
std::string ZlibStored(const std::string& text) {
  std::string out("\x78\x01", 2);
  size_t at = 0;
  do {
    size_t n = std::min<size_t>(text.size() - at, 65535);
    bool last = at + n == text.size();
    out += char(last ? 1 : 0);
    out += char(n & 0xff);
    out += char(n >> 8);
    out += char(~n & 0xff);
    out += char((~n >> 8) & 0xff);
    out.append(text, at, n);
    at += n;
  } while (at < text.size());
  uint32_t a = 1, b = 0;
  for (unsigned char c : text) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  uint32_t adler = (b << 16) | a;
  for (int shift = 24; shift >= 0; shift -= 8) out += char((adler >> shift) & 0xff);
  return out;
}

std::string Pattern(size_t n) {
  std::string text;
  for (size_t i = 0; text.size() < n; ++i) text += "line " + std::to_string(i) + " of the page\n";
  text.resize(n);
  return text;
}

class HttpResponseTest : public HttpTest {
 protected:
  void SetUp() override {
    HttpTest::SetUp();
    auto& s = server.server;
    s.Get("/ok", [](const httplib::Request&, httplib::Response& res) {
      res.set_content("hello", "text/html");
    });
    s.Get("/created", [](const httplib::Request&, httplib::Response& res) {
      res.status = 201;
      res.set_content("made", "text/plain");
    });
    s.Get("/empty", [](const httplib::Request&, httplib::Response& res) { res.status = 204; });
    s.Get("/missing", [](const httplib::Request&, httplib::Response& res) {
      res.status = 404;
      res.set_content("no such page", "text/html");
    });
    s.Get("/broken", [](const httplib::Request&, httplib::Response& res) {
      res.status = 500;
      res.set_content("oops", "text/html");
    });
    s.Get("/moved",
          [](const httplib::Request&, httplib::Response& res) { res.set_redirect("/ok"); });
    s.Get("/nowhere",
          [](const httplib::Request&, httplib::Response& res) { res.set_redirect("/missing"); });
    s.Get(R"(/chain/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
      int left = std::stoi(req.matches[1]);
      if (left == 0)
        res.set_content("end of chain", "text/html");
      else
        res.set_redirect("/chain/" + std::to_string(left - 1));
    });
    s.Get("/loop",
          [](const httplib::Request&, httplib::Response& res) { res.set_redirect("/loop"); });
    // Only a 3xx other than 304 is a redirect, whatever headers come with it.
    s.Get("/gone", [](const httplib::Request&, httplib::Response& res) {
      res.status = 404;
      res.set_header("Location", "/ok");
    });
    s.Get("/unchanged", [](const httplib::Request&, httplib::Response& res) {
      res.status = 304;
      res.set_header("Location", "/ok");
    });
    // The same server under another host text.
    s.Get("/away", [this](const httplib::Request&, httplib::Response& res) {
      res.set_redirect(server.Url("/ok", "localhost"));
    });
    s.Get("/binary", [](const httplib::Request&, httplib::Response& res) {
      res.set_content(std::string("a\0b\0\xff", 5), "application/octet-stream");
    });
    s.Get("/gzip", [](const httplib::Request&, httplib::Response& res) {
      res.set_header("Content-Encoding", "gzip");
      res.set_content(Gzip(Pattern(100000)), "application/octet-stream");
    });
    s.Get("/deflate", [](const httplib::Request&, httplib::Response& res) {
      res.set_header("Content-Encoding", "deflate");
      res.set_content(ZlibStored(Pattern(70000)), "application/octet-stream");
    });
    s.Get("/bad-gzip", [](const httplib::Request&, httplib::Response& res) {
      res.set_header("Content-Encoding", "gzip");
      res.set_content("this is not gzip at all", "application/octet-stream");
    });
    ASSERT_TRUE(server.Start());
  }
  LocalHttpServer server;
};

TEST_F(HttpResponseTest, StatusAndBodyFollowTheFinalResponse) {
  struct Case {
    const char* path;
    ORV_HTTP_STATUS status;
    long code;
    std::string body;
    int requests;  // each redirect hop is one
  };
  const std::vector<Case> cases = {
      {"/ok", ORV_HTTP_OK, 200, "hello", 1},
      {"/created", ORV_HTTP_OK, 201, "made", 1},
      {"/empty", ORV_HTTP_OK, 204, "", 1},
      {"/missing", ORV_HTTP_NOT_2XX, 404, "", 1},
      {"/broken", ORV_HTTP_NOT_2XX, 500, "", 1},
      {"/moved", ORV_HTTP_OK, 200, "hello", 2},
      {"/nowhere", ORV_HTTP_NOT_2XX, 404, "", 2},
      {"/gone", ORV_HTTP_NOT_2XX, 404, "", 1},
      {"/unchanged", ORV_HTTP_NOT_2XX, 304, "", 1},
      {"/away", ORV_HTTP_OK, 200, "hello", 2},
      {"/chain/10", ORV_HTTP_OK, 200, "end of chain", 11},
      {"/chain/11", ORV_HTTP_NETWORK, 302, "", 11},
      {"/loop", ORV_HTTP_NETWORK, 302, "", 11},
      {"/binary", ORV_HTTP_OK, 200, std::string("a\0b\0\xff", 5), 1},
      {"/gzip", ORV_HTTP_OK, 200, Pattern(100000), 1},
      {"/deflate", ORV_HTTP_OK, 200, Pattern(70000), 1},
      {"/bad-gzip", ORV_HTTP_NETWORK, 200, "", 1},
  };
  OrvHttp shared;  // one client for the whole table: state must not leak between runs
  for (const Case& c : cases) {
    for (int fresh = 0; fresh < 2; ++fresh) {
      SCOPED_TRACE(std::string(c.path) + (fresh ? " (new client)" : " (shared client)"));
      OrvHttp own;
      OrvHttpLimits::ResetCounters();
      int hitsBefore = server.hits;
      Fetched got = Fetch(fresh ? own : shared, server.Url(c.path));
      EXPECT_EQ(got.status, c.status);
      EXPECT_EQ(got.code, c.code);
      EXPECT_EQ(got.bodyResult, c.status == ORV_HTTP_OK ? 1 : 0);
      EXPECT_EQ(got.body, c.body);
      EXPECT_EQ(server.hits - hitsBefore, c.requests);
      EXPECT_EQ(OrvHttpLimits::GetRequests(), c.requests);
      EXPECT_EQ(OrvHttpLimits::GetFetches(), 1);
    }
  }
}

// A hop is a request like any other: the budget, the delay and the allowed
// hosts judge it before it is sent.
TEST_F(HttpResponseTest, RedirectHopsPassTheGate) {
  struct Case {
    const char* label;
    int64_t maxRequests;
    int32_t delayMs;
    const char* hosts;
    const char* path;
    ORV_HTTP_STATUS status;
    long code;
    int requests;
    double atLeast;  // seconds
  };
  const std::vector<Case> cases = {
      {"chain within the budget", 3, 0, "", "/chain/2", ORV_HTTP_OK, 200, 3, 0},
      {"hop past the budget", 2, 0, "", "/chain/2", ORV_HTTP_BUDGET_SPENT, 302, 2, 0},
      {"budget of one", 1, 0, "", "/moved", ORV_HTTP_BUDGET_SPENT, 302, 1, 0},
      {"delay before each hop", 0, 150, "", "/chain/2", ORV_HTTP_OK, 200, 3, 0.3},
      {"redirect to a host left out", 0, 0, "127.0.0.1", "/away", ORV_HTTP_HOST_REFUSED, 302, 1, 0},
      {"redirect to an allowed host", 0, 0, "127.0.0.1,localhost", "/away", ORV_HTTP_OK, 200, 2, 0},
      {"first host left out", 0, 0, "localhost", "/ok", ORV_HTTP_HOST_REFUSED, 0, 0, 0},
      {"another port", 0, 0, "127.0.0.1:1", "/ok", ORV_HTTP_HOST_REFUSED, 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    OrvHttpLimits::Reset();
    OrvHttpSettings settings;
    settings.maxRequests = c.maxRequests;
    settings.delayMs = c.delayMs;
    OrvHttpLimits::Set(settings);
    ASSERT_EQ(OrvHttpLimits::SetHosts(c.hosts, -1), 1);
    int hitsBefore = server.hits;
    Fetched got = Fetch(server.Url(c.path));
    EXPECT_EQ(got.status, c.status);
    EXPECT_EQ(got.code, c.code);
    EXPECT_EQ(server.hits - hitsBefore, c.requests);
    EXPECT_EQ(OrvHttpLimits::GetRequests(), c.requests);
    EXPECT_EQ(OrvHttpLimits::GetFetches(), c.requests > 0 ? 1 : 0);
    EXPECT_GE(got.seconds, c.atLeast);
  }
}

TEST_F(HttpResponseTest, AnyBytesAsUrlFailCleanly) {
  std::string withNul = server.Url("/ok");
  withNul.insert(withNul.size() - 2, 1, '\0');
  struct Case {
    const char* label;
    std::string url;
    bool nullPointer;
    ORV_HTTP_METHOD method;
    ORV_HTTP_STATUS status;
  };
  const std::vector<Case> cases = {
      {"null", "", true, ORV_HTTP_GET, ORV_HTTP_BAD_REQUEST},
      {"empty", "", false, ORV_HTTP_GET, ORV_HTTP_BAD_REQUEST},
      {"embedded NUL", withNul, false, ORV_HTTP_GET, ORV_HTTP_BAD_REQUEST},
      {"unknown method", server.Url("/ok"), false, ORV_HTTP_METHOD(7), ORV_HTTP_BAD_REQUEST},
      {"other protocol", "ftp://127.0.0.1/file", false, ORV_HTTP_GET, ORV_HTTP_NETWORK},
      {"file protocol", "file:///etc/hostname", false, ORV_HTTP_GET, ORV_HTTP_NETWORK},
      {"garbage", "\x01\xff::://[[", false, ORV_HTTP_GET, ORV_HTTP_BAD_REQUEST},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    OrvHttp http;
    char* url = c.nullPointer ? nullptr : const_cast<char*>(c.url.data());
    EXPECT_EQ(http.Run(url, c.nullPointer ? -1 : long(c.url.size()), c.method), c.status);
    OrvString body;
    body = "kept?";
    EXPECT_EQ(http.GetBody(body), 0);
    EXPECT_EQ(body.len, 0);
  }
  // The NUL-terminated form reads up to the NUL only.
  OrvHttp http;
  std::string url = server.Url("/ok");
  EXPECT_EQ(http.Run(const_cast<char*>(url.c_str()), -1, ORV_HTTP_GET), ORV_HTTP_OK);
}

TEST_F(HttpResponseTest, ClosedPortFailsAtOnce) {
  int port;
  {
    LocalHttpServer gone;
    ASSERT_TRUE(gone.Start());
    std::string url = gone.Url("/");
    port = std::stoi(url.substr(url.rfind(':') + 1));
  }
  Fetched got = Fetch("http://127.0.0.1:" + std::to_string(port) + "/");
  EXPECT_EQ(got.status, ORV_HTTP_NETWORK);
  EXPECT_LT(got.seconds, 2.0);
}

TEST_F(HttpResponseTest, MalformedResponsesFailWithoutHanging) {
  struct Case {
    const char* label;
    std::string reply;
    ORV_HTTP_STATUS status;
  };
  const std::vector<Case> cases = {
      {"garbage bytes", std::string("\x00\xff\x13garbage\r\n\r\n", 14), ORV_HTTP_NETWORK},
      {"nothing at all", "", ORV_HTTP_NETWORK},
      {"short body", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly ten b", ORV_HTTP_NETWORK},
      {"bad chunking", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nabc\r\n",
       ORV_HTTP_NETWORK},
      {"status out of range", "HTTP/1.1 999 What\r\nContent-Length: 2\r\n\r\nok", ORV_HTTP_NOT_2XX},
      {"http/1.0 until close", "HTTP/1.0 200 OK\r\n\r\nbody until close", ORV_HTTP_OK},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    RawSocketServer raw([&](int fd, const std::atomic<bool>&) { SendText(fd, c.reply); });
    ASSERT_TRUE(raw.Start());
    Fetched got = Fetch(raw.Url("/"));
    EXPECT_EQ(got.status, c.status);
    EXPECT_LT(got.seconds, 5.0);
  }
}

TEST_F(HttpResponseTest, OneClientServesManyRunsAndKeepsTheLastBody) {
  OrvHttp http;
  EXPECT_EQ(Fetch(http, server.Url("/ok")).body, "hello");
  EXPECT_EQ(Fetch(http, server.Url("/missing")).bodyResult, 0);
  EXPECT_EQ(Fetch(http, server.Url("/created")).body, "made");
  // GetBody may be called again; it hands out a copy.
  OrvString first, second;
  EXPECT_EQ(http.GetBody(first), 1);
  EXPECT_EQ(http.GetBody(second), 1);
  EXPECT_EQ(std::string(second.buf, size_t(second.len)), "made");
}

TEST_F(HttpResponseTest, ContentTypeOfTheFinalResponse) {
  struct Case {
    std::string url;
    int result;
    std::string type;
  };
  const std::vector<Case> cases = {
      {server.Url("/ok"), 1, "text/html"},    {server.Url("/created"), 1, "text/plain"},
      {server.Url("/moved"), 1, "text/html"}, {server.Url("/missing"), 1, "text/html"},
      {"http://127.0.0.1:1/", 0, ""},
  };
  OrvHttp http;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.url);
    Fetch(http, c.url);
    OrvString type("left over", -1);
    EXPECT_EQ(http.GetContentType(type), c.result);
    EXPECT_EQ(std::string(type.buf, size_t(type.len)), c.type);
  }
}

}  // namespace
