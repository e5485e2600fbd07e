// `orvwebpage estimate` against servers that stall, never finish, loop, grow
// without end or send garbage: with a budget or a deadline it must end in
// time, report what it had, and never crash.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "robust/HostileServer.h"
#include "support/RunTool.h"

namespace {

// What a case starts: the servers (kept alive by `owner`), the entry URL and
// how many requests the servers have answered so far.
struct Site {
  std::shared_ptr<void> owner;
  std::string entry;
  std::function<int()> hits;
};

std::string Page(const std::string& body) {
  return "<html><head><title>t</title></head><body>" + body + "</body></html>";
}

std::string Link(const std::string& href) { return "<a href=\"" + href + "\">more</a> "; }

// A plain entry page whose links lead to `path` with three different
// parameter names, so each of them is a shape of its own and gets fetched.
void ServeEntryLinkingTo(HttpTestServer& s, const std::string& path) {
  std::string body = Link(path + "?a=1") + Link(path + "?b=1") + Link(path + "?c=1");
  s.server.Get("/", [body](const httplib::Request&, httplib::Response& res) {
    res.set_content(Page(body), "text/html");
  });
}

// One byte a second, for as long as the client stays.
void ServeTrickle(HttpTestServer& s, const std::string& path) {
  s.server.Get(path, [&s](const httplib::Request&, httplib::Response& res) {
    res.set_chunked_content_provider("text/html", [&s](size_t, httplib::DataSink& sink) {
      if (!SleepUnlessStopped(s.stopping, 1000)) return false;
      return sink.write("<", 1);
    });
  });
}

// An endless stream of markup, as fast as it can be taken.
void ServeEndless(HttpTestServer& s, const std::string& path) {
  s.server.Get(path, [&s](const httplib::Request&, httplib::Response& res) {
    res.set_chunked_content_provider("text/html", [&s](size_t, httplib::DataSink& sink) {
      static const std::string chunk = [] {
        std::string text;
        for (int i = 0; i < 512; ++i) text += "<p>more text ";
        return text;
      }();
      if (s.stopping) return false;
      return sink.write(chunk.data(), chunk.size());
    });
  });
}

Site Http(const std::function<void(HttpTestServer&)>& setUp, const std::string& entryPath) {
  auto server = std::make_shared<HttpTestServer>();
  setUp(*server);
  if (!server->Start()) return {};
  HttpTestServer* raw = server.get();
  return {server, server->Url(entryPath), [raw] { return raw->hits.load(); }};
}

Site Raw(RawTestServer::Answer answer) {
  auto server = std::make_shared<RawTestServer>(std::move(answer));
  if (!server->Start()) return {};
  RawTestServer* raw = server.get();
  return {server, server->Url("/"), [raw] { return raw->connections.load(); }};
}

std::string RandomBytes(size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(count, '\0');
  for (auto& b : bytes) b = static_cast<char>(random() & 0xFF);
  return bytes;
}

// Every page links to two parameter names never seen before: a crawl that
// only stops when its limits say so.
void ServeNewNamesForever(HttpTestServer& s) {
  s.server.Get("/p", [](const httplib::Request& req, httplib::Response& res) {
    long n = 0;
    if (!req.params.empty()) n = std::atol(req.params.begin()->first.c_str() + 1);
    res.set_content(Page(Link("/p?k" + std::to_string(2 * n + 1) + "=1") +
                         Link("/p?k" + std::to_string(2 * n + 2) + "=1")),
                    "text/html");
  });
}

struct HostileCase {
  const char* name;
  std::function<Site()> start;
  std::vector<std::string> options;
  int status;         // expected exit status
  double maxSeconds;  // the limit the options set
  double minSeconds;  // at least this long (delays)
  long minEstimate;   // with status 0: the estimate's range
  long maxEstimate;
  int maxHits;          // requests the servers may see at most; 0: any
  bool estimateIsHits;  // every answered request was a readable plain page
};

// Room for starting the process and for sanitizer builds.
constexpr double kSlack = 3.0;

const HostileCase kCases[] = {
    {"TrickleEntryCutByTimeout",
     [] { return Http([](HttpTestServer& s) { ServeTrickle(s, "/"); }, "/"); },
     {"--timeout", "1"},
     1,
     1,
     0,
     0,
     0,
     0,
     false},
    {"TrickleEntryCutByDeadline",
     [] { return Http([](HttpTestServer& s) { ServeTrickle(s, "/"); }, "/"); },
     {"--deadline", "2"},
     1,
     2,
     0,
     0,
     0,
     0,
     false},
    {"TrickleHeadersCutByDeadline",
     [] {
       return Raw([](int fd, const std::atomic<bool>& stopping) {
         std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n";
         for (char c : head)
           if (!SleepUnlessStopped(stopping, 1000) || !SendAll(fd, std::string(1, c), stopping))
             return;
       });
     },
     {"--deadline", "2"},
     1,
     2,
     0,
     0,
     0,
     0,
     false},
    {"TricklePagesBehindReadableEntry",
     [] {
       return Http(
           [](HttpTestServer& s) {
             ServeEntryLinkingTo(s, "/slow");
             ServeTrickle(s, "/slow");
           },
           "/");
     },
     {"--json", "--deadline", "3"},
     0,
     3,
     0,
     1,
     1,
     0,
     false},
    {"EndlessBodyEntry",
     [] { return Http([](HttpTestServer& s) { ServeEndless(s, "/"); }, "/"); },
     {"--timeout", "3"},
     1,
     3,
     0,
     0,
     0,
     0,
     false},
    {"EndlessBodiesBehindReadableEntry",
     [] {
       return Http(
           [](HttpTestServer& s) {
             ServeEntryLinkingTo(s, "/endless");
             ServeEndless(s, "/endless");
           },
           "/");
     },
     {"--json", "--deadline", "4"},
     0,
     4,
     0,
     1,
     1,
     0,
     false},
    {"RedirectLoopEntry",
     [] {
       return Http(
           [](HttpTestServer& s) {
             s.server.Get("/", [](const httplib::Request&, httplib::Response& res) {
               res.set_redirect("/");
             });
           },
           "/");
     },
     {"--deadline", "10"},
     1,
     10,
     0,
     0,
     0,
     12,
     false},
    {"EndlessRedirectChainBehindReadableEntry",
     [] {
       return Http(
           [](HttpTestServer& s) {
             s.server.Get("/", [](const httplib::Request&, httplib::Response& res) {
               res.set_content(Page(Link("/r?n=0")), "text/html");
             });
             s.server.Get("/r", [](const httplib::Request& req, httplib::Response& res) {
               long n = std::atol(req.get_param_value("n").c_str());
               res.set_redirect("/r?n=" + std::to_string(n + 1));
             });
           },
           "/");
     },
     {"--json", "--deadline", "10"},
     0,
     10,
     0,
     1,
     1,
     13,
     false},
    {"NewParameterNamesStopAtBudget",
     [] { return Http(ServeNewNamesForever, "/p"); },
     {"--json", "--max-requests", "40"},
     0,
     15,
     0,
     40,
     40,
     40,
     true},
    {"NewParameterNamesStopAtDeadline",
     [] { return Http(ServeNewNamesForever, "/p"); },
     {"--json", "--deadline", "2"},
     0,
     2,
     0,
     2,
     1000000,
     0,
     false},
    {"DelayBetweenRequests",
     [] { return Http(ServeNewNamesForever, "/p"); },
     {"--json", "--max-requests", "5", "--delay", "300"},
     0,
     10,
     1.2,
     5,
     5,
     5,
     true},
    {"GarbageInsteadOfHttp",
     [] {
       return Raw([](int fd, const std::atomic<bool>& stopping) {
         SendAll(fd, RandomBytes(8192, 7), stopping);
       });
     },
     {"--deadline", "5"},
     1,
     5,
     0,
     0,
     0,
     0,
     false},
    {"GarbageBody",
     [] {
       return Raw([](int fd, const std::atomic<bool>& stopping) {
         std::string body = RandomBytes(200000, 11);
         SendAll(fd,
                 "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: " +
                     std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body,
                 stopping);
       });
     },
     {"--json", "--deadline", "5"},
     0,
     5,
     0,
     0,
     1,
     0,
     false},
    {"BodyShorterThanPromised",
     [] {
       return Raw([](int fd, const std::atomic<bool>& stopping) {
         SendAll(fd,
                 "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 100000\r\n"
                 "\r\n<html><body><a href=\"/x?q=1\">x</a>",
                 stopping);
       });
     },
     {"--deadline", "5"},
     1,
     5,
     0,
     0,
     0,
     0,
     false},
    {"NestedAMillionDeep",
     [] {
       return Http(
           [](HttpTestServer& s) {
             s.server.Get("/", [](const httplib::Request&, httplib::Response& res) {
               std::string body;
               for (int i = 0; i < 1000000; ++i) body += "<div>";
               res.set_content(Page(body + Link("/d?x=1")), "text/html");
             });
             s.server.Get("/d", [](const httplib::Request&, httplib::Response& res) {
               res.set_content(Page("plain"), "text/html");
             });
           },
           "/");
     },
     {"--json", "--deadline", "15"},
     0,
     15,
     0,
     1,
     2,
     0,
     false},
};

// Failures name the case instead of dumping its bytes.
void PrintTo(const HostileCase& c, std::ostream* os) { *os << c.name; }

class EstimateHostile : public testing::TestWithParam<HostileCase> {};

TEST_P(EstimateHostile, EndsInTimeAndReportsWhatItHad) {
  const HostileCase& c = GetParam();
  Site site = c.start();
  ASSERT_TRUE(site.owner) << "test server did not start";

  std::vector<std::string> args = {ToolPath("orvwebpage"), "estimate"};
  args.insert(args.end(), c.options.begin(), c.options.end());
  args.push_back(site.entry);
  ToolRun run = RunTool(args, c.maxSeconds + 15);
  int hits = site.hits();
  site.owner.reset();

  ASSERT_FALSE(run.killed) << "still running " << run.seconds << " s after start";
  EXPECT_EQ(run.status, c.status) << run.err;
  EXPECT_LE(run.seconds, c.maxSeconds + kSlack);
  EXPECT_GE(run.seconds, c.minSeconds);
  if (c.maxHits > 0) {
    EXPECT_LE(hits, c.maxHits);
  }

  if (c.status != 0) {
    // One line saying what went wrong, and nothing on stdout to mistake for a result.
    EXPECT_TRUE(run.out.empty()) << run.out;
    ASSERT_FALSE(run.err.empty());
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    return;
  }
  auto json = nlohmann::json::parse(run.out, nullptr, false);
  ASSERT_TRUE(json.is_object()) << run.out;
  ASSERT_TRUE(json["estimate"].is_number_integer()) << run.out;
  ASSERT_TRUE(json["requests"].is_number_integer()) << run.out;
  long estimate = json["estimate"];
  long requests = json["requests"];
  EXPECT_GE(estimate, c.minEstimate);
  EXPECT_LE(estimate, c.maxEstimate);
  EXPECT_GE(requests, 1);
  if (c.estimateIsHits) {
    EXPECT_EQ(estimate, hits);
    EXPECT_EQ(requests, hits);
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, EstimateHostile, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<HostileCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
