// What `orvwebpage estimate` prints for a small site whose estimate is known,
// what it sends, and when it shows progress.

#include <gtest/gtest.h>

#include <mutex>
#include <nlohmann/json.hpp>

#include "support/LocalServers.h"
#include "support/RunTool.h"

namespace {

// An entry page with three links of one shape, each leading to a plain page:
// the entry counts 1 and the shape 1 x 3 sightings, so the estimate is 4
// after two requests.
class SmallSite {
 public:
  LocalHttpServer http;

  SmallSite() {
    http.server.Get("/", [this](const httplib::Request& req, httplib::Response& res) {
      Record(req);
      res.set_content(
          "<html><body><a href=\"/item?id=1\">one</a> <a href=\"/item?id=2\">two</a> "
          "<a href=\"/item?id=3\">three</a></body></html>",
          "text/html");
    });
    http.server.Get("/item", [this](const httplib::Request& req, httplib::Response& res) {
      Record(req);
      res.set_content("<html><body><p>an item</p></body></html>", "text/html");
    });
    http.server.Get("/moved",
                    [](const httplib::Request&, httplib::Response& res) { res.set_redirect("/"); });
  }
  std::vector<std::string> Agents() {
    std::lock_guard<std::mutex> lock(mutex);
    return agents;
  }

 private:
  void Record(const httplib::Request& req) {
    std::lock_guard<std::mutex> lock(mutex);
    agents.push_back(req.get_header_value("User-Agent"));
  }
  std::mutex mutex;
  std::vector<std::string> agents;
};

constexpr long kSmallSiteEstimate = 4;
constexpr long kSmallSiteRequests = 2;

ToolRun Estimate(const std::vector<std::string>& options, const std::string& url,
                 bool stderrIsTerminal = false) {
  std::vector<std::string> args = {ToolPath("orvwebpage"), "estimate"};
  args.insert(args.end(), options.begin(), options.end());
  args.push_back(url);
  return RunTool(args, 30, stderrIsTerminal);
}

TEST(EstimateOutput, JsonHasTheFourFieldsInOrder) {
  SmallSite site;
  ASSERT_TRUE(site.http.Start());
  const std::string url = site.http.Url("/");
  ToolRun run = Estimate({"--json"}, url);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.err.empty()) << run.err;

  auto json = nlohmann::ordered_json::parse(run.out, nullptr, false);
  ASSERT_TRUE(json.is_object()) << run.out;
  std::vector<std::string> keys;
  for (auto& item : json.items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (std::vector<std::string>{"url", "estimate", "requests", "seconds"}));
  EXPECT_EQ(json["url"], url);
  EXPECT_EQ(json["estimate"], kSmallSiteEstimate);
  EXPECT_EQ(json["requests"], kSmallSiteRequests);
  ASSERT_TRUE(json["seconds"].is_number());
  EXPECT_GE(json["seconds"].get<double>(), 0.0);
  EXPECT_LE(json["seconds"].get<double>(), run.seconds);
  // One document and nothing after it.
  EXPECT_EQ(run.out.find('\n'), run.out.size() - 1);
}

TEST(EstimateOutput, ReadableFormNamesEachFigure) {
  SmallSite site;
  ASSERT_TRUE(site.http.Start());
  const std::string url = site.http.Url("/");
  ToolRun run = Estimate({}, url);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string expected[] = {"url:      " + url + "\n",
                                  "estimate: " + std::to_string(kSmallSiteEstimate) + " pages\n",
                                  "requests: " + std::to_string(kSmallSiteRequests) + " ("};
  for (const auto& line : expected) EXPECT_NE(run.out.find(line), std::string::npos) << run.out;
  EXPECT_EQ(run.out.find('{'), std::string::npos) << run.out;
}

TEST(EstimateOutput, UserAgentReachesTheServer) {
  struct Case {
    std::vector<std::string> options;
    std::string agent;  // empty: the library's own, whatever it is
  };
  const Case cases[] = {
      {{"--user-agent", "OrvTestAgent/1.0 (+loopback)"}, "OrvTestAgent/1.0 (+loopback)"},
      {{}, ""},
  };
  for (const auto& c : cases) {
    SmallSite site;
    ASSERT_TRUE(site.http.Start());
    ToolRun run = Estimate(c.options, site.http.Url("/"));
    ASSERT_EQ(run.status, 0) << run.err;
    auto agents = site.Agents();
    ASSERT_EQ(agents.size(), static_cast<size_t>(kSmallSiteRequests));
    for (const auto& agent : agents) {
      if (c.agent.empty()) {
        EXPECT_FALSE(agent.empty());
        EXPECT_EQ(agent.find("curl"), std::string::npos) << agent;
      } else {
        EXPECT_EQ(agent, c.agent);
      }
    }
  }
}

// Progress is for a person at a terminal; in a pipe it would only be noise.
TEST(EstimateOutput, ProgressOnlyWhenStderrIsATerminal) {
  struct Case {
    bool terminal;
    std::vector<std::string> options;
  };
  const Case cases[] = {{false, {}}, {false, {"--json"}}, {true, {}}, {true, {"--json"}}};
  for (const auto& c : cases) {
    SmallSite site;
    ASSERT_TRUE(site.http.Start());
    const std::string url = site.http.Url("/");
    ToolRun run = Estimate(c.options, url, c.terminal);
    ASSERT_EQ(run.status, 0) << run.err;
    if (!c.terminal) {
      EXPECT_TRUE(run.err.empty()) << run.err;
      continue;
    }
    // The line shows the requests made and a URL, is redrawn in place and
    // is wiped at the end, so no newline is left behind.
    EXPECT_NE(run.err.find(" request"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find(url), std::string::npos) << run.err;
    EXPECT_NE(run.err.find('\r'), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find('\n'), std::string::npos) << run.err;
    EXPECT_EQ(run.err.substr(run.err.size() - 4), "\r\033[K") << run.err;
    // stdout stays clean for whatever reads it.
    EXPECT_EQ(run.out.find('\r'), std::string::npos);
  }
}

// Every request the server receives is one in the output and in the budget,
// redirects included.
TEST(EstimateOutput, RequestsCountRedirects) {
  struct Case {
    std::vector<std::string> options;
    const char* path;
    int requests;
  };
  const Case cases[] = {
      {{}, "/", kSmallSiteRequests},
      {{}, "/moved", kSmallSiteRequests + 1},
      {{"--max-requests", "2"}, "/moved", 2},
  };
  for (const auto& c : cases) {
    SmallSite site;
    ASSERT_TRUE(site.http.Start());
    std::vector<std::string> options = c.options;
    options.push_back("--json");
    ToolRun run = Estimate(options, site.http.Url(c.path));
    ASSERT_EQ(run.status, 0) << c.path << ": " << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(json.is_object()) << run.out;
    EXPECT_EQ(json["requests"], c.requests) << c.path;
    EXPECT_EQ(site.http.hits.load(), c.requests) << c.path;
  }
}

// An entry host without a dot gives an empty site domain, which every host
// contains: the crawl follows a link to another server, and the tool warns.
// --hosts keeps the requests home. An address keeps three of its numbers and
// its port in the domain, so another port is another site and no warning comes.
TEST(EstimateOutput, OffSiteLinksWarningAndHosts) {
  struct Case {
    const char* entryHost;
    std::vector<std::string> options;
    bool warns;
    int offSiteHits;
  };
  const Case cases[] = {
      {"localhost", {}, true, 1},
      {"localhost", {"--json"}, true, 1},
      {"localhost", {"--hosts", "localhost"}, true, 0},
      {"localhost", {"--hosts", "localhost,127.0.0.1"}, true, 1},
      {"127.0.0.1", {}, false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.entryHost) + (c.options.empty() ? "" : " " + c.options.back()));
    LocalHttpServer home, away;
    away.server.Get("/elsewhere", [](const httplib::Request&, httplib::Response& res) {
      res.set_content("<html><body><p>another site</p></body></html>", "text/html");
    });
    ASSERT_TRUE(away.Start());
    const std::string page = "<html><body><a href=\"/item?id=1\">here</a> <a href=\"" +
                             away.Url("/elsewhere?from=1") + "\">there</a></body></html>";
    home.server.Get("/", [page](const httplib::Request&, httplib::Response& res) {
      res.set_content(page, "text/html");
    });
    home.server.Get("/item", [](const httplib::Request&, httplib::Response& res) {
      res.set_content("<html><body><p>an item</p></body></html>", "text/html");
    });
    ASSERT_TRUE(home.Start());
    const std::string entry = home.Url("/", c.entryHost);

    std::vector<std::string> options = c.options;
    options.push_back("--json");
    ToolRun run = Estimate(options, entry);
    ASSERT_EQ(run.status, 0) << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(json.is_object()) << run.out;
    EXPECT_EQ(away.hits.load(), c.offSiteHits);
    EXPECT_EQ(json["requests"], home.hits.load() + away.hits.load());
    if (c.warns) {
      // One line, before the crawl, naming the empty domain and the way out.
      EXPECT_TRUE(run.err.rfind("orvwebpage: warning: ", 0) == 0) << run.err;
      EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
      EXPECT_NE(run.err.find("empty"), std::string::npos) << run.err;
      EXPECT_NE(run.err.find(home.Url("/", "www.localhost")), std::string::npos) << run.err;
      EXPECT_NE(run.err.find("--hosts"), std::string::npos) << run.err;
    } else {
      EXPECT_TRUE(run.err.empty()) << run.err;
    }
  }
}

}  // namespace
