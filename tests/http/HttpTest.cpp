#include <gtest/gtest.h>

#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "support/Cases.h"
#include "support/LocalServers.h"

namespace {

using Clock = std::chrono::steady_clock;

std::string Text(const OrvString& s) { return std::string(s.buf ? s.buf : "", size_t(s.len)); }

std::vector<std::vector<std::string>> Rows(const std::string& name) {
  return ReadCases(ORV_CASES_DIR "/http/" + name, 10);
}

const char* const kStatus[] = {
    "OK",        "BAD_REQUEST",  "NETWORK",      "NOT_2XX",        "TIMEOUT",
    "TOO_LARGE", "BUDGET_SPENT", "HOST_REFUSED", "ROBOTS_REFUSED", "STOPPED"};

struct Fetched {
  ORV_HTTP_STATUS status;
  double seconds;
};

Fetched Fetch(const std::string& url, OrvHttp* client = nullptr) {
  OrvHttp own;
  auto start = Clock::now();
  auto status = (client ? *client : own).Run(const_cast<char*>(url.data()), -1, ORV_HTTP_GET);
  return {status, std::chrono::duration<double>(Clock::now() - start).count()};
}

// Binary bytes too: a body is bytes, not a C string.
const std::string kLong = [] {
  std::string text;
  for (int i = 0; text.size() < 100000; ++i)
    text += "line " + std::to_string(i) + std::string("\0\xff", 2);
  return text;
}();

std::string Gzip(const std::string& text) {
  std::string out;
  auto add = [&](const char* data, size_t n) { return out.append(data, n), true; };
  httplib::detail::gzip_compressor().compress(text.data(), text.size(), true, add);
  return out;
}

// Every test starts from the defaults, with zero counters.
class Http : public testing::Test {
 protected:
  void SetUp() override {
    OrvHttpLimits::Reset();
    auto& s = server.server;
    for (const auto& p : Rows("pages.tsv")) {
      std::string body = p[5] == "(long text, gzipped)" ? Gzip(kLong) : p[5];
      s.Get(p[0], [=](const httplib::Request&, httplib::Response& res) {
        res.status = std::stoi(p[1]);
        if (!body.empty() || !p[2].empty()) res.set_content(body, p[2]);
        if (!p[3].empty()) res.set_header(p[3], p[4]);
      });
    }
    s.Get("/ok", [this](const httplib::Request& req, httplib::Response& res) {
      std::lock_guard<std::mutex> hold(lock);
      heads.push_back(req.get_header_value("User-Agent") + " " +
                      req.get_header_value("Accept-Encoding"));
      res.set_content("hello", "text/html");
    });
    s.Get(R"(/chain/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
      int left = std::stoi(req.matches[1]);
      if (left == 0) return res.set_content("end", "text/html");
      res.set_redirect("/chain/" + std::to_string(left - 1));
    });
    s.Get("/away", [this](const httplib::Request&, httplib::Response& res) {
      res.set_redirect(server.Url("/ok", "localhost"));
    });
    s.Get(R"(/bytes/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
      res.set_content(std::string(std::stoul(req.matches[1]), 'x'), "text/plain");
    });
    // Announces its length, then sends it a byte at a time.
    s.Get("/trickle", [this](const httplib::Request&, httplib::Response& res) {
      res.set_content_provider(1000, "text/html", [this](size_t, size_t, httplib::DataSink& sink) {
        return PauseUnlessStopping(server.stopping, 100) && sink.write("x", 1);
      });
    });
    // Never ends, and never says how long it is.
    s.Get("/endless", [this](const httplib::Request&, httplib::Response& res) {
      res.set_chunked_content_provider("text/html", [this](size_t, httplib::DataSink& sink) {
        return !server.stopping && sink.write(kLong.data(), kLong.size());
      });
    });
    s.Get("/silent", [this](const httplib::Request&, httplib::Response& res) {
      PauseUnlessStopping(server.stopping, 4000);
      res.set_content("too late", "text/html");
    });
    ASSERT_TRUE(server.Start());
  }

  static void Set(void (*change)(OrvHttpSettings&)) {
    OrvHttpSettings settings;
    change(settings);
    OrvHttpLimits::Set(settings);
  }

  LocalHttpServer server;
  std::mutex lock;
  std::vector<std::string> heads;  // User-Agent and Accept-Encoding of each /ok
};

// One client for the whole table and one per row: state must not leak
// between runs.
TEST_F(Http, FetchesEndAsTheirCasesSay) {
  OrvHttp shared;
  for (const auto& row : Rows("fetch.tsv")) {
    for (int fresh = 0; fresh < 2; ++fresh) {
      SCOPED_TRACE(row[0] + " " + row[1] + (fresh ? " (new client)" : " (shared client)"));
      OrvHttpLimits::Reset();
      OrvHttpSettings settings;
      std::stringstream options(row[1]);
      for (std::string option; options >> option;) {
        std::string key = option.substr(0, option.find('=')), value = option.substr(key.size() + 1);
        if (key == "hosts") OrvHttpLimits::SetHosts(value.c_str(), -1);
        int64_t n = std::atoll(value.c_str());
        if (key == "requests") settings.maxRequests = n;
        if (key == "delay") settings.delayMs = int32_t(n);
        if (key == "deadline") settings.deadlineMs = n;
        if (key == "timeout") settings.requestTimeoutMs = int32_t(n);
        if (key == "stall") settings.stallSeconds = int32_t(n), settings.stallBytesPerSecond = 100;
        if (key == "cap") settings.maxBodyBytes = n;
      }
      OrvHttpLimits::Set(settings);
      server.hits = 0;
      OrvHttp own, &http = fresh ? own : shared;
      Fetched got = Fetch(server.Url(row[0]), &http);
      OrvString body("left over", -1), type("left over", -1);
      EXPECT_EQ(http.GetBody(body), got.status == ORV_HTTP_OK);
      // Taking the body gives what GetBody gave and leaves none behind.
      OrvString taken("left over", -1), after("left over", -1);
      EXPECT_EQ(http.TakeBody(taken), got.status == ORV_HTTP_OK);
      EXPECT_EQ(Text(taken), Text(body));
      http.GetBody(after);
      EXPECT_EQ(after.len, 0);
      int typed = http.GetContentType(type);
      EXPECT_EQ(typed, type.len > 0);
      int requests = std::stoi(row[6]);
      EXPECT_EQ(kStatus[got.status], row[2]);
      EXPECT_TRUE(row[3] == "*" || std::to_string(http.GetResponseCode()) == row[3]);
      EXPECT_TRUE(row[4] == "*" || Text(body) == (row[4] == "(long text)" ? kLong : row[4]))
          << body.len << " bytes";
      EXPECT_TRUE(row[5] == "*" || Text(type) == row[5]) << Text(type);
      EXPECT_EQ(server.hits, requests);
      EXPECT_EQ(OrvHttpLimits::GetRequests(), requests);
      EXPECT_EQ(OrvHttpLimits::GetFetches(), requests > 0 ? 1 : 0);
      EXPECT_LE(OrvHttpLimits::GetBytes(), settings.maxBodyBytes);
      EXPECT_GE(got.seconds, std::atof(row[7].c_str()));
      EXPECT_LE(got.seconds, row[8].empty() ? 10 : std::atof(row[8].c_str()));
      OrvString failedUrl, reason;
      int failed = OrvHttpLimits::GetLastFailure(failedUrl, reason);
      EXPECT_EQ(failed, got.status != ORV_HTTP_OK);
      EXPECT_TRUE(row[9].empty() || Text(reason) == (row[9] == "none" ? "" : row[9]))
          << Text(reason);
    }
  }
}

// Any bytes as a URL and any bytes as a reply end cleanly and soon.
TEST_F(Http, MalformedUrlsAndRepliesFailCleanly) {
  std::string withNul = server.Url("/ok");
  withNul.insert(withNul.size() - 2, 1, '\0');
  struct Case {
    std::string url;  // "raw": a server that sends reply
    long length;      // -1: up to the first NUL
    std::string reply;
    ORV_HTTP_STATUS status;
  };
  const Case cases[] = {
      {"", 0, "", ORV_HTTP_BAD_REQUEST},
      {withNul, long(withNul.size()), "", ORV_HTTP_BAD_REQUEST},
      {withNul, -1, "", ORV_HTTP_NOT_2XX},  // the root, which is 404
      {"ftp://127.0.0.1/file", -1, "", ORV_HTTP_NETWORK},
      {"file:///etc/hostname", -1, "", ORV_HTTP_NETWORK},
      {"\x01\xff::://[[", -1, "", ORV_HTTP_BAD_REQUEST},
      {"http://127.0.0.1:1/", -1, "", ORV_HTTP_NETWORK},  // nobody listens
      {"raw", -1, std::string("\0\xff\x13garbage\r\n\r\n", 14), ORV_HTTP_NETWORK},
      {"raw", -1, "", ORV_HTTP_NETWORK},
      {"raw", -1, "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly ten b", ORV_HTTP_NETWORK},
      {"raw", -1, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nabc\r\n",
       ORV_HTTP_NETWORK},
      {"raw", -1, "HTTP/1.1 999 What\r\nContent-Length: 2\r\n\r\nok", ORV_HTTP_NOT_2XX},
      {"raw", -1, "HTTP/1.0 200 OK\r\n\r\nbody until close", ORV_HTTP_OK},
  };
  OrvHttp http;
  EXPECT_EQ(http.Run(nullptr, -1, ORV_HTTP_GET), ORV_HTTP_BAD_REQUEST);
  std::string ok = server.Url("/ok");
  EXPECT_EQ(http.Run(ok.data(), -1, ORV_HTTP_METHOD(7)), ORV_HTTP_BAD_REQUEST);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.url + " " + c.reply);
    RawSocketServer raw(c.reply);
    ASSERT_TRUE(c.url != "raw" || raw.Start());
    std::string url = c.url == "raw" ? raw.Url() : c.url;
    auto start = Clock::now();
    EXPECT_EQ(http.Run(url.data(), c.url == "raw" ? -1 : c.length, ORV_HTTP_GET), c.status);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
  }
}

// A spent budget or a passed deadline fails at once, without touching the
// server; the budget is the process's, not a client's.
TEST_F(Http, SpentBudgetAndPassedDeadlineFailAtOnce) {
  Set([](OrvHttpSettings& s) { s.maxRequests = 3; });
  OrvHttp a, b;
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(OrvHttpLimits::IsSpent(), i >= 3) << i;
    Fetched got = Fetch(server.Url("/bytes/10"), i % 2 ? &a : &b);
    EXPECT_EQ(got.status, i < 3 ? ORV_HTTP_OK : ORV_HTTP_BUDGET_SPENT) << i;
    EXPECT_LT(got.seconds, i < 3 ? 5 : 0.05) << i;
  }
  EXPECT_EQ(server.hits, 3);
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 3);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), 30);
  OrvHttpLimits::ResetCounters();  // a new run gets a new budget
  EXPECT_EQ(Fetch(server.Url("/bytes/10"), &a).status, ORV_HTTP_OK);

  Set([](OrvHttpSettings& s) { s.deadlineMs = 300; });
  EXPECT_EQ(Fetch(server.Url("/bytes/5"), &a).status, ORV_HTTP_OK);
  std::this_thread::sleep_for(std::chrono::milliseconds(350));
  EXPECT_EQ(OrvHttpLimits::IsSpent(), 1);
  Fetched late = Fetch(server.Url("/bytes/5"), &a);
  EXPECT_EQ(late.status, ORV_HTTP_BUDGET_SPENT);
  EXPECT_LT(late.seconds, 0.05);
  EXPECT_EQ(server.hits, 5);
  Set([](OrvHttpSettings&) {});  // no deadline any more
  EXPECT_EQ(Fetch(server.Url("/bytes/5"), &a).status, ORV_HTTP_OK);
}

// By order of events, so that a loaded machine cannot fail it: with a long
// delay, the second request of a run waits and the server sees one request,
// until a stop ends the wait at once. Clients of one run on two threads share
// the spacing.
TEST_F(Http, DelaySpacesRequestsOfAllClientsUntilStopped) {
  Set([](OrvHttpSettings& s) { s.delayMs = 600000; });
  EXPECT_EQ(Fetch(server.Url("/ok")).status, ORV_HTTP_OK);
  Fetched waited{};
  std::thread second([&] { waited = Fetch(server.Url("/ok")); });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(server.hits, 1);
  OrvHttpLimits::Stop();
  second.join();
  EXPECT_EQ(waited.status, ORV_HTTP_STOPPED);
  EXPECT_LT(waited.seconds, 5);
  EXPECT_EQ(server.hits, 1);
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 1);                    // the stopped one was never sent
  EXPECT_EQ(Fetch(server.Url("/ok")).status, ORV_HTTP_STOPPED);  // stopped for good
  OrvString url, reason;
  EXPECT_EQ(OrvHttpLimits::GetLastFailure(url, reason), 1);
  EXPECT_EQ(Text(reason), "stopped");

  // A delay that would end past the deadline is not waited out.
  OrvHttpLimits::Reset();
  Set([](OrvHttpSettings& s) { s.deadlineMs = 100, s.delayMs = 5000; });
  Fetch(server.Url("/ok"));  // the first waits for nothing
  Fetched got = Fetch(server.Url("/ok"));
  EXPECT_EQ(got.status, ORV_HTTP_BUDGET_SPENT);
  EXPECT_LT(got.seconds, 0.05);
}

TEST_F(Http, UserAgentAndEncodings) {
  Fetch(server.Url("/ok"));
  Set([](OrvHttpSettings& s) { std::string("TestAgent/9").copy(s.userAgent, 11); });
  Fetch(server.Url("/ok"));
  std::string agent = OrvHttpLimits::DefaultUserAgent();
  EXPECT_TRUE(agent.rfind("OrvWebPage/", 0) == 0 && agent.size() > 11) << agent;
  ASSERT_EQ(heads.size(), 2u);
  EXPECT_EQ(heads[0].substr(0, agent.size() + 1), agent + " ");
  EXPECT_EQ(heads[1].substr(0, 12), "TestAgent/9 ");
  for (const std::string& head : heads)
    EXPECT_TRUE(head.find("gzip") != head.npos && head.find("deflate") != head.npos) << head;
}

TEST_F(Http, CountersAndProgressFollowEveryRequest) {
  std::vector<std::string> ends, expected;  // requests, bytes and URL as each request ends
  OrvHttpLimits::SetProgress(
      [](const OrvHttpProgress& p, void* out) {
        // Reading the counters from inside the callback must not deadlock.
        EXPECT_EQ(OrvHttpLimits::GetRequests(), p.requests);
        if (p.finished)
          static_cast<std::vector<std::string>*>(out)->push_back(
              std::to_string(p.requests) + " " + std::to_string(p.bytes) + " " + p.url);
      },
      &ends);
  int64_t bytes = 0, requests = 0;
  for (auto [path, size] : {std::pair("/bytes/100", 100), {"/missing", 4}, {"/bytes/0", 0}}) {
    Fetch(server.Url(path));  // an error page's body counts too
    bytes += size;
    expected.push_back(std::to_string(++requests) + " " + std::to_string(bytes) + " " +
                       server.Url(path));
  }
  EXPECT_EQ(ends, expected);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), bytes);
  OrvString current;
  OrvHttpLimits::GetCurrentUrl(current);
  EXPECT_EQ(Text(current), server.Url("/bytes/0"));
  OrvHttpLimits::ResetCounters();
  OrvHttpLimits::GetCurrentUrl(current);
  EXPECT_EQ(current.len + OrvHttpLimits::GetBytes() + OrvHttpLimits::GetRequests(), 0);
}

// Rows: patterns, SetHosts' result (0 keeps the patterns before), a URL and
// whether it passes, and GetHosts afterwards ("-": not checked).
TEST(HttpHosts, PatternsDecideWhichUrlsPass) {
  auto rows = Rows("hosts.tsv");
  EXPECT_GT(rows.size(), 30u);
  for (const auto& f : rows) {
    SCOPED_TRACE(f[0]);
    ASSERT_EQ(OrvHttpLimits::SetHosts("keep.test", -1), 1);
    EXPECT_EQ(OrvHttpLimits::SetHosts(f[0].c_str(), -1), std::stoi(f[1]));
    OrvString cleaned;
    OrvHttpLimits::GetHosts(cleaned);
    EXPECT_TRUE(f[4] == "-" || Text(cleaned) == f[4]) << Text(cleaned);
    EXPECT_TRUE(f[2].empty() || OrvHttpLimits::AllowsUrl(f[2].c_str(), -1) == std::stoi(f[3]));
  }
  OrvHttpLimits::Reset();
}

}  // namespace
