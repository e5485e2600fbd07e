#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvHttpRun.h"
#include "platform/http/OrvRobotsTxt.h"
#include "support/Cases.h"
#include "support/LocalServers.h"

namespace {

using Clock = std::chrono::steady_clock;

std::string Text(const OrvString& s) { return std::string(s.buf ? s.buf : "", size_t(s.len)); }

const char* const kStatus[] = {
    "OK",        "BAD_REQUEST",  "NETWORK",      "NOT_2XX",        "TIMEOUT",
    "TOO_LARGE", "BUDGET_SPENT", "HOST_REFUSED", "ROBOTS_REFUSED", "STOPPED"};

ORV_HTTP_STATUS Get(const std::string& url) {
  OrvHttp http;
  return http.Run(const_cast<char*>(url.data()), -1, ORV_HTTP_GET);
}

// Rows: a file under robots/, a User-Agent, a path and whether it may be
// fetched; then, when given, the Crawl-delay and the number of Sitemap lines.
TEST(RobotsTxt, RulesDecideWhichPathsPass) {
  for (const auto& row : ReadCases(ORV_CASES_DIR "/http/robots.tsv", 6, true)) {
    SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
    std::string file = ReadFile(ORV_CASES_DIR "/http/robots/" + row[0]);
    ASSERT_FALSE(file.empty());
    OrvRobotsTxt robots;
    robots.Parse(file.data(), long(file.size()), row[1].c_str(), -1);
    EXPECT_EQ(robots.Allows(row[2].data(), long(row[2].size())), std::stoi(row[3]));
    if (!row[4].empty()) {
      EXPECT_EQ(robots.CrawlDelayMs(), std::stoll(row[4]));
    }
    if (!row[5].empty()) {
      EXPECT_EQ(robots.Sitemaps().count, std::stoi(row[5]));
    }
  }
}

// Only the first 500 KiB count, and a rule cut there is no rule; a file of
// any size or content is read quickly.
TEST(RobotsTxt, HugeFilesAreCut) {
  std::string filler = "# " + std::string(1000, 'x') + "\n";
  std::string file = "User-agent: *\nDisallow: /early\n";
  while (file.size() + filler.size() < size_t(OrvRobotsTxt::kMaxBytes) - 10) file += filler;
  file.resize(size_t(OrvRobotsTxt::kMaxBytes) - 10, '#');
  file += "\nDisallow: /cut\nDisallow: /late\n";
  std::string stars = "User-agent: *\nDisallow: /" + std::string(200000, '*') + "z$\n";
  struct Case {
    std::string file, path;
    int allowed;
  } cases[] = {
      {file, "/early", 0},
      {file, "/cut", 1},
      {file, "/late", 1},
      {stars, "/" + std::string(100000, 'y'), 1},
      {stars, "/" + std::string(100000, 'y') + "z", 0},
  };
  for (const Case& c : cases) {
    auto start = Clock::now();
    OrvRobotsTxt robots;
    robots.Parse(c.file.data(), long(c.file.size()), "x", -1);
    EXPECT_EQ(robots.Allows(c.path.data(), long(c.path.size())), c.allowed) << c.path.size();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  }
}

class HttpRobots : public testing::Test {
 protected:
  void SetUp() override {
    OrvHttpLimits::Reset();
    auto& s = server.server;
    s.Get("/robots.txt", [this](const httplib::Request&, httplib::Response& res) {
      std::istringstream words(answer);
      std::string kind;
      words >> kind;
      if (kind == "hops") {
        int hops = 0;
        words >> hops;
        return res.set_redirect("/robots-hop/" + std::to_string(hops - 1));
      }
      if (kind == "away") return res.set_redirect(server.Url("/robots-hop/0", "localhost"));
      if (kind == "slow") PauseUnlessStopping(server.stopping, 2000);
      res.status = kind == "slow" ? 200 : std::stoi(kind);
      res.set_content(answer.size() > 4 ? answer.substr(4) : "", "text/plain");
    });
    s.Get(R"(/robots-hop/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
      int left = std::stoi(req.matches[1]);
      if (left == 0) return res.set_content("User-agent: *\nDisallow: /no\n", "text/plain");
      res.set_redirect("/robots-hop/" + std::to_string(left - 1));
    });
    for (const char* path : {"/ok", "/no"})
      s.Get(path, [](const httplib::Request&, httplib::Response& res) {
        res.set_content("hello", "text/html");
      });
    s.Get("/port", [this](const httplib::Request& req, httplib::Response& res) {
      std::lock_guard<std::mutex> hold(lock);
      ports.insert(req.remote_port);
      res.set_content("hello", "text/html");
    });
    s.Get("/moved",
          [](const httplib::Request&, httplib::Response& res) { res.set_redirect("/ok"); });
    s.Get("/silent", [this](const httplib::Request&, httplib::Response& res) {
      PauseUnlessStopping(server.stopping, 4000);
      res.set_content("too late", "text/html");
    });
    ASSERT_TRUE(server.Start());
  }
  void TearDown() override { OrvHttpLimits::Reset(); }

  LocalHttpServer server;
  std::string answer = "404";
  std::mutex lock;
  std::set<int> ports;  // the client ends of the connections /port was asked on
};

// Each row in a run of its own: what robots.txt answers, and how the request
// after it ends, with the requests the server saw (robots.txt's included).
TEST_F(HttpRobots, AnswersDecideTheRequestsAfterThem) {
  for (const auto& row : ReadCases(ORV_CASES_DIR "/http/robots-fetch.tsv", 6, true)) {
    SCOPED_TRACE(row[0] + " | " + row[1] + " " + row[2]);
    OrvHttpRun run;
    run.Bind();
    answer = row[0];
    OrvHttpSettings settings;
    settings.obeyRobots = 1;
    std::istringstream options(row[1]);
    for (std::string option; options >> option;) {
      std::string key = option.substr(0, option.find('='));
      std::string value = option.substr(std::min(option.size(), key.size() + 1));
      if (key == "ignore") settings.obeyRobots = 0;
      if (key == "requests") settings.maxRequests = std::stoll(value);
      if (key == "timeout") settings.requestTimeoutMs = std::stoi(value);
      if (key == "agent") value.copy(settings.userAgent, sizeof settings.userAgent - 1);
      if (key == "hosts") OrvHttpLimits::SetHosts(value.c_str(), -1);
    }
    OrvHttpLimits::Set(settings);
    server.hits = 0;
    EXPECT_EQ(kStatus[Get(server.Url(row[2]))], row[3]);
    EXPECT_EQ(server.hits, std::stoi(row[4]));
    EXPECT_EQ(OrvHttpLimits::GetRequests(), std::stoi(row[4]));
    EXPECT_LE(OrvHttpLimits::GetFetches(), 1);
    OrvString url, reason;
    OrvHttpLimits::GetLastFailure(url, reason);
    EXPECT_EQ(Text(reason), row[5] == "none" ? "" : row[5]);
    OrvStrArray refused;
    OrvHttpLimits::GetRobotsRefused(refused);
    EXPECT_EQ(refused.count, row[3] == "ROBOTS_REFUSED" ? 1 : 0);
  }
}

// robots.txt is read once per origin and run; its Crawl-delay spaces the
// requests there, and its Sitemap lines are kept.
TEST_F(HttpRobots, ReadOncePerOriginAndRun) {
  answer = "200 User-agent: *\nCrawl-delay: 0.3\nSitemap: http://a.test/s.xml\nDisallow: /no";
  OrvHttpSettings settings;
  settings.obeyRobots = 1;
  OrvHttpLimits::Set(settings);
  auto start = Clock::now();
  for (const char* path : {"/ok", "/no", "/ok"}) Get(server.Url(path));
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(300));
  OrvStrArray sitemaps;
  EXPECT_EQ(OrvHttpLimits::GetRobotsSitemaps(server.Url("/any").c_str(), -1, sitemaps), 1);
  ASSERT_EQ(sitemaps.count, 1);
  EXPECT_STREQ(sitemaps[0], "http://a.test/s.xml");
  Get(server.Url("/ok", "localhost"));  // another origin
  std::vector<std::string> expected = {"/robots.txt", "/ok", "/ok", "/robots.txt", "/ok"};
  EXPECT_EQ(server.Targets(), expected);
  OrvStrArray refused;
  OrvHttpLimits::GetRobotsRefused(refused);
  ASSERT_EQ(refused.count, 1);
  EXPECT_EQ(std::string(refused[0]), server.Url("/no"));

  OrvHttpRun other;  // a new run reads it again, and finds no sitemap when there is no file
  other.Bind();
  answer = "404";
  EXPECT_EQ(OrvHttpLimits::GetRobotsSitemaps(server.Url("/").c_str(), -1, sitemaps), 0);
  EXPECT_EQ(sitemaps.count, 0);
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 1);
}

// Runs on several threads keep their own budgets and counts, apart from the
// default run; a stop from another thread ends a transfer in flight.
TEST_F(HttpRobots, RunsKeepTheirOwnLimits) {
  std::vector<std::thread> threads;
  std::vector<std::string> outcomes(4);
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&, i] {
      OrvHttpRun run;
      run.Bind();
      OrvHttpSettings settings;
      settings.maxRequests = 2 + i % 2;
      OrvHttpLimits::Set(settings);
      std::string& out = outcomes[size_t(i)];
      for (int k = 0; k < 4; ++k) out += std::string(kStatus[Get(server.Url("/ok"))]) + " ";
      out += std::to_string(OrvHttpLimits::GetRequests());
    });
  for (auto& t : threads) t.join();
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(outcomes[size_t(i)],
              i % 2 ? "OK OK OK BUDGET_SPENT 3" : "OK OK BUDGET_SPENT BUDGET_SPENT 2");
  EXPECT_EQ(OrvHttpLimits::GetRequests(), 0);

  OrvHttpRun slow;
  ORV_HTTP_STATUS status = ORV_HTTP_OK;
  auto start = Clock::now();
  std::thread fetching([&] {
    slow.Bind();
    status = Get(server.Url("/silent"));
  });
  while (slow.GetRequests() == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  slow.Stop();
  fetching.join();
  EXPECT_EQ(status, ORV_HTTP_STOPPED);
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(3000));
}

}  // namespace

// The clients of a run share its connections: four requests from two clients
// come on one connection (the server serves five on one); another run opens
// its own.
TEST_F(HttpRobots, ClientsOfARunShareOneConnection) {
  OrvHttpRun run;
  run.Bind();
  OrvHttp a, b;
  std::string url = server.Url("/port");
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ((i % 2 ? a : b).Run(url.data(), -1, ORV_HTTP_GET), ORV_HTTP_OK);
  EXPECT_EQ(ports.size(), 1u);
  OrvHttpRun other;
  other.Bind();
  EXPECT_EQ(a.Run(url.data(), -1, ORV_HTTP_GET), ORV_HTTP_OK);
  EXPECT_EQ(ports.size(), 2u);
}
