// What `orvwebpage estimate` prints for a small site whose estimate is known,
// what it sends, and when it shows progress.

#include <gtest/gtest.h>

#include <mutex>
#include <nlohmann/json.hpp>

#include "robust/HostileServer.h"
#include "support/RunTool.h"

namespace {

// An entry page with three links of one shape, each leading to a plain page:
// the entry counts 1 and the shape 1 x 3 sightings, so the estimate is 4
// after two requests.
class SmallSite {
 public:
  HttpTestServer http;

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

}  // namespace
