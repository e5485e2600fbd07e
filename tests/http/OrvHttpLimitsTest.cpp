#include <gtest/gtest.h>

#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "http/HttpTestSupport.h"

namespace {

using Clock = std::chrono::steady_clock;

class HttpLimitsTest : public HttpTest {
 protected:
  void SetUp() override {
    HttpTest::SetUp();
    auto& s = server.server;
    s.Get("/ok", [this](const httplib::Request& req, httplib::Response& res) {
      {
        std::lock_guard<std::mutex> hold(lock);
        starts.push_back(Clock::now());
        agents.push_back(req.get_header_value("User-Agent"));
        encodings.push_back(req.get_header_value("Accept-Encoding"));
      }
      res.set_content("hello", "text/html");
    });
    s.Get(R"(/bytes/(\d+))", [this](const httplib::Request& req, httplib::Response& res) {
      ++hits;
      res.set_content(std::string(std::stoul(req.matches[1]), 'x'), "application/octet-stream");
    });
    // Announces its length, then sends it a byte at a time.
    s.Get("/trickle", [this](const httplib::Request&, httplib::Response& res) {
      res.set_content_provider(1000, "text/html",
                               [this](size_t offset, size_t, httplib::DataSink& sink) {
                                 if (!PauseUnlessStopping(server.stopping, 100)) return false;
                                 return sink.write(&"abcdefghij"[offset % 10], 1);
                               });
    });
    // Never ends, and never says how long it is.
    s.Get("/endless", [this](const httplib::Request&, httplib::Response& res) {
      res.set_chunked_content_provider("text/html", [this](size_t, httplib::DataSink& sink) {
        static const std::string block(16384, 'y');
        return !server.stopping && sink.write(block.data(), block.size());
      });
    });
    s.Get("/missing", [](const httplib::Request&, httplib::Response& res) {
      res.status = 404;
      res.set_content("gone", "text/html");
    });
    s.Get("/silent", [this](const httplib::Request&, httplib::Response& res) {
      PauseUnlessStopping(server.stopping, 4000);
      res.set_content("too late", "text/html");
    });
    ASSERT_TRUE(server.Start());
  }

  LocalHttpServer server;
  std::mutex lock;
  std::vector<Clock::time_point> starts;
  std::vector<std::string> agents;
  std::vector<std::string> encodings;
  std::atomic<int> hits{0};
};

TEST_F(HttpLimitsTest, BodySizeCap) {
  struct Case {
    const char* path;
    int64_t cap;
    ORV_HTTP_STATUS status;
    double within;  // seconds
  };
  const std::vector<Case> cases = {
      {"/bytes/1000", 1000, ORV_HTTP_OK, 5},
      {"/bytes/1001", 1000, ORV_HTTP_TOO_LARGE, 5},
      {"/bytes/0", 0, ORV_HTTP_OK, 5},
      {"/bytes/1", 0, ORV_HTTP_TOO_LARGE, 5},
      {"/endless", 100000, ORV_HTTP_TOO_LARGE, 5},
      {"/endless", int64_t(32) << 20, ORV_HTTP_TOO_LARGE, 10},  // the default cap
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.path) + " cap " + std::to_string(c.cap));
    OrvHttpSettings settings;
    settings.maxBodyBytes = c.cap;
    OrvHttpLimits::Set(settings);
    OrvHttpLimits::ResetCounters();
    Fetched got = Fetch(server.Url(c.path));
    EXPECT_EQ(got.status, c.status);
    EXPECT_LT(got.seconds, c.within);
    // The transfer stops at the cap rather than buffering what follows.
    EXPECT_LE(OrvHttpLimits::GetBytes(), c.cap);
  }
}

TEST_F(HttpLimitsTest, SlowServersEndWithinTheirLimits) {
  struct Case {
    const char* label;
    const char* path;
    int32_t requestTimeoutMs;
    int32_t stallSeconds;
    int64_t deadlineMs;
    double atLeast, atMost;  // seconds
  };
  const std::vector<Case> cases = {
      {"trickle, request timeout", "/trickle", 700, 0, 0, 0.6, 2.5},
      {"trickle, stall rule", "/trickle", 30000, 1, 0, 0.9, 3.0},
      {"silent, request timeout", "/silent", 500, 0, 0, 0.4, 2.0},
      {"silent, deadline", "/silent", 30000, 10, 600, 0.5, 2.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    OrvHttpSettings settings;
    settings.requestTimeoutMs = c.requestTimeoutMs;
    settings.stallSeconds = c.stallSeconds;
    settings.stallBytesPerSecond = 100;
    settings.deadlineMs = c.deadlineMs;
    OrvHttpLimits::Set(settings);
    Fetched got = Fetch(server.Url(c.path));
    EXPECT_EQ(got.status, ORV_HTTP_TIMEOUT);
    EXPECT_GE(got.seconds, c.atLeast);
    EXPECT_LE(got.seconds, c.atMost);
  }
}

TEST_F(HttpLimitsTest, SpentBudgetFailsAtOnceWithoutTouchingTheServer) {
  OrvHttpSettings settings;
  settings.maxRequests = 3;
  OrvHttpLimits::Set(settings);
  OrvHttp a, b;  // the budget is the process's, not a client's
  const std::vector<ORV_HTTP_STATUS> expected = {ORV_HTTP_OK, ORV_HTTP_OK, ORV_HTTP_OK,
                                                 ORV_HTTP_BUDGET_SPENT, ORV_HTTP_BUDGET_SPENT};
  for (size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(OrvHttpLimits::IsSpent(), i >= 3 ? 1 : 0);
    Fetched got = Fetch(i % 2 ? a : b, server.Url("/bytes/10"));
    EXPECT_EQ(got.status, expected[i]);
    if (i >= 3) {
      EXPECT_LT(got.seconds, 0.05);
    }
  }
  EXPECT_EQ(hits.load(), 3);
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 3);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), 30);

  OrvHttpLimits::ResetCounters();  // a new run gets a new budget
  EXPECT_EQ(OrvHttpLimits::IsSpent(), 0);
  EXPECT_EQ(Fetch(a, server.Url("/bytes/10")).status, ORV_HTTP_OK);
  EXPECT_EQ(hits.load(), 4);
}

TEST_F(HttpLimitsTest, PassedDeadlineFailsAtOnce) {
  OrvHttpSettings settings;
  settings.deadlineMs = 300;
  OrvHttpLimits::Set(settings);
  OrvHttp http;
  EXPECT_EQ(Fetch(http, server.Url("/bytes/5")).status, ORV_HTTP_OK);
  std::this_thread::sleep_for(std::chrono::milliseconds(350));
  EXPECT_EQ(OrvHttpLimits::IsSpent(), 1);
  Fetched late = Fetch(http, server.Url("/bytes/5"));
  EXPECT_EQ(late.status, ORV_HTTP_BUDGET_SPENT);
  EXPECT_LT(late.seconds, 0.05);
  EXPECT_EQ(hits.load(), 1);

  settings.deadlineMs = 0;  // no deadline any more
  OrvHttpLimits::Set(settings);
  EXPECT_EQ(Fetch(http, server.Url("/bytes/5")).status, ORV_HTTP_OK);
}

TEST_F(HttpLimitsTest, DelaySpacesRequestsOfAllClients) {
  OrvHttpSettings settings;
  settings.delayMs = 150;
  OrvHttpLimits::Set(settings);
  auto begin = Clock::now();
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t)
    threads.emplace_back([this] {
      OrvHttp http;
      for (int i = 0; i < 2; ++i) Fetch(http, server.Url("/ok"));
    });
  for (auto& t : threads) t.join();
  ASSERT_EQ(starts.size(), 4u);
  std::sort(starts.begin(), starts.end());
  for (size_t i = 1; i < starts.size(); ++i)
    EXPECT_GE(starts[i] - starts[i - 1], std::chrono::milliseconds(140)) << i;
  EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(440));

  // A delay that would end past the deadline is not waited out.
  settings.deadlineMs = 100;
  settings.delayMs = 5000;
  OrvHttpLimits::Set(settings);
  Fetched got = Fetch(server.Url("/ok"));
  EXPECT_EQ(got.status, ORV_HTTP_BUDGET_SPENT);
  EXPECT_LT(got.seconds, 0.05);
}

TEST_F(HttpLimitsTest, UserAgentAndEncodings) {
  EXPECT_EQ(Fetch(server.Url("/ok")).status, ORV_HTTP_OK);
  OrvHttpSettings settings;
  std::strcpy(settings.userAgent, "TestAgent/9");
  OrvHttpLimits::Set(settings);
  EXPECT_EQ(Fetch(server.Url("/ok")).status, ORV_HTTP_OK);
  ASSERT_EQ(agents.size(), 2u);
  EXPECT_EQ(agents[0], OrvHttpLimits::DefaultUserAgent());
  EXPECT_EQ(agents[0].rfind("OrvWebPage/", 0), 0u);
  EXPECT_GT(agents[0].size(), std::strlen("OrvWebPage/"));
  EXPECT_EQ(agents[1], "TestAgent/9");
  for (const std::string& encoding : encodings) {
    EXPECT_NE(encoding.find("gzip"), std::string::npos) << encoding;
    EXPECT_NE(encoding.find("deflate"), std::string::npos) << encoding;
  }
}

struct ProgressLog {
  std::mutex lock;
  std::vector<OrvHttpProgress> reports;
  std::vector<std::string> urls;
};

void Record(const OrvHttpProgress& progress, void* context) {
  auto* log = static_cast<ProgressLog*>(context);
  // Reading the counters from inside the callback must not deadlock.
  EXPECT_EQ(OrvHttpLimits::GetRequests(), progress.requests);
  std::lock_guard<std::mutex> hold(log->lock);
  log->reports.push_back(progress);
  log->urls.push_back(progress.url);
}

TEST_F(HttpLimitsTest, CountersAndProgressFollowEveryRequest) {
  ProgressLog log;
  OrvHttpLimits::SetProgress(Record, &log);
  const std::vector<std::string> paths = {"/bytes/100", "/bytes/2000", "/missing", "/bytes/0"};
  OrvHttp http;
  for (const std::string& path : paths) Fetch(http, server.Url(path));

  EXPECT_EQ(OrvHttpLimits::GetRequests(), 4);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), 100 + 2000 + 4);  // an error page's body counts too
  OrvString current;
  OrvHttpLimits::GetCurrentUrl(current);
  EXPECT_EQ(std::string(current.buf, size_t(current.len)), server.Url("/bytes/0"));

  // Each request reports a start and an end, in order, with rising counters.
  std::vector<std::string> finishedUrls;
  int64_t lastRequests = 0, lastBytes = 0;
  for (size_t i = 0; i < log.reports.size(); ++i) {
    const OrvHttpProgress& p = log.reports[i];
    EXPECT_GE(p.requests, lastRequests);
    EXPECT_GE(p.bytes, lastBytes);
    lastRequests = p.requests;
    lastBytes = p.bytes;
    if (p.finished) finishedUrls.push_back(log.urls[i]);
  }
  ASSERT_EQ(finishedUrls.size(), paths.size());
  for (size_t i = 0; i < paths.size(); ++i) EXPECT_EQ(finishedUrls[i], server.Url(paths[i]));
  EXPECT_EQ(log.reports.back().requests, 4);

  OrvHttpLimits::ResetCounters();
  OrvHttpLimits::GetCurrentUrl(current);
  EXPECT_EQ(current.len, 0);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), 0);
}

// A pattern without a port allows any port; "*." allows the hosts below a
// domain but not the domain itself.
TEST_F(HttpTest, HostPatternsDecideWhichUrlsPass) {
  struct Case {
    const char* patterns;
    int taken;        // SetHosts' result; 0 keeps the patterns before
    const char* url;  // with taken patterns: is it allowed?
    int allowed;
    const char* cleaned;  // GetHosts afterwards, when not NULL
  };
  const std::vector<Case> cases = {
      {"", 1, "http://anything.test/", 1, ""},
      {"site.test", 1, "http://site.test/", 1, "site.test"},
      {"ZED.Site.test", 1, "http://zed.SITE.TEST:8080/x", 1, "zed.site.test"},
      {"site.test:65535", 1, "http://site.test:65535/", 1, nullptr},
      {"site.test", 1, "http://site.test./", 1, nullptr},
      {"site.test", 1, "site.test/page", 1, nullptr},
      {"site.test", 1, "http://www.site.test/", 0, nullptr},
      {"site.test", 1, "http://site.test.evil.test/", 0, nullptr},
      {"site.test", 1, "http://evil.test/?site.test", 0, nullptr},
      {"site.test", 1, "http://site.test@evil.test/", 0, nullptr},
      {"site.test", 1, "ftp://site.test/", 0, nullptr},
      {"*.site.test", 1, "http://a.b.site.test/", 1, "*.site.test"},
      {"*.site.test", 1, "http://site.test/", 0, nullptr},
      {"*.site.test", 1, "http://badsite.test/", 0, nullptr},
      {"*.site.test:8080", 1, "http://www.site.test:8080/", 1, "*.site.test:8080"},
      {"*.site.test:8080", 1, "http://www.site.test/", 0, nullptr},
      {"site.test:80", 1, "http://site.test/", 1, nullptr},
      {"site.test:443", 1, "https://site.test/", 1, nullptr},
      {"site.test:443", 1, "http://site.test/", 0, nullptr},
      {" a.test ,127.0.0.1:8080 ", 1, "http://127.0.0.1:8080/", 1, "a.test,127.0.0.1:8080"},
      {"127.0.0.1:8080", 1, "http://127.0.0.1:8081/", 0, nullptr},
      {"[::1]:8080", 1, "http://[::1]:8080/", 1, "[::1]:8080"},
      {"[::1]", 1, "http://127.0.0.1/", 0, nullptr},
      {"a,,b", 0, nullptr, 0, "keep.test"},
      {"a,", 0, nullptr, 0, "keep.test"},
      {"*", 0, nullptr, 0, "keep.test"},
      {"*.", 0, nullptr, 0, "keep.test"},
      {"a*.test", 0, nullptr, 0, "keep.test"},
      {"a/b", 0, nullptr, 0, "keep.test"},
      {"a b", 0, nullptr, 0, "keep.test"},
      {"a:0", 0, nullptr, 0, "keep.test"},
      {"a:65536", 0, nullptr, 0, "keep.test"},
      {"a:http", 0, nullptr, 0, "keep.test"},
      {"a:b:80", 0, nullptr, 0, "keep.test"},
      {"a:080", 0, nullptr, 0, "keep.test"},
      {"[]", 0, nullptr, 0, "keep.test"},
      {"a:", 0, nullptr, 0, "keep.test"},
      {"::1", 0, nullptr, 0, "keep.test"},
      {"*.[::1]", 0, nullptr, 0, "keep.test"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string("\"") + c.patterns + "\" " + (c.url ? c.url : ""));
    ASSERT_EQ(OrvHttpLimits::SetHosts("keep.test", -1), 1);
    EXPECT_EQ(OrvHttpLimits::SetHosts(c.patterns, -1), c.taken);
    if (c.url) {
      EXPECT_EQ(OrvHttpLimits::AllowsUrl(c.url, -1), c.allowed);
    }
    if (c.cleaned) {
      OrvString cleaned;
      OrvHttpLimits::GetHosts(cleaned);
      EXPECT_EQ(std::string(cleaned.buf, size_t(cleaned.len)), c.cleaned);
    }
  }
}

TEST_F(HttpLimitsTest, ClientsOnManyThreadsShareOneCount) {
  std::vector<std::thread> threads;
  std::atomic<int> ok{0};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      OrvHttp http;
      for (int i = 0; i < 5; ++i) ok += Fetch(http, server.Url("/bytes/7")).status == ORV_HTTP_OK;
    });
  for (auto& t : threads) t.join();
  EXPECT_EQ(ok.load(), 20);
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 20);
  EXPECT_EQ(OrvHttpLimits::GetBytes(), 140);
}

}  // namespace
