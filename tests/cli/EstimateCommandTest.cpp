// `orvwebpage estimate`: usage errors, a URL that cannot be read, and what it
// reports for the sample site's profiles.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <nlohmann/json.hpp>

#include "support/RunTool.h"
#include "support/SampleSite.h"

namespace {

// A loopback port nobody listens on: bound once to learn a free one, then closed.
int ClosedPort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  int port = 0;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0)
    port = ntohs(address.sin_port);
  close(fd);
  return port;
}

bool IsOneLine(const std::string& text) {
  return !text.empty() && text.find('\n') == text.size() - 1;
}

struct UsageCase {
  const char* name;
  std::vector<std::string> args;
};

TEST(EstimateCommand, BadOptionsExitTwoWithOneLine) {
  const std::string url = "http://127.0.0.1:" + std::to_string(ClosedPort()) + "/";
  const UsageCase cases[] = {
      {"no URL", {}},
      {"two URLs", {url, url}},
      {"unknown option", {"--pages", "3", url}},
      {"budget not a number", {"--max-requests", "many", url}},
      {"budget zero", {"--max-requests", "0", url}},
      {"budget negative", {"--max-requests", "-5", url}},
      {"timeout zero", {"--timeout", "0", url}},
      {"timeout not a number", {"--timeout", "soon", url}},
      {"deadline negative", {"--deadline", "-1", url}},
      {"delay negative", {"--delay", "-10", url}},
      {"delay not a number", {"--delay", "1s", url}},
      {"option without its value", {url, "--deadline"}},
      {"timeout not finite", {"--timeout", "nan", url}},
      {"deadline infinite", {"--deadline", "inf", url}},
      {"deadline beyond any use", {"--deadline", "1e300", url}},
      {"user agent with a line break", {"--user-agent", "a\r\nX-Injected: 1", url}},
      {"user agent too long", {"--user-agent", std::string(300, 'a'), url}},
      {"hosts with a path", {"--hosts", "site.test/x", url}},
      {"hosts empty", {"--hosts", "", url}},
      {"hosts with an empty pattern", {"--hosts", "site.test,,a.test", url}},
      {"hosts with a bad port", {"--hosts", "site.test:99999", url}},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {ToolPath("orvwebpage"), "estimate"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    ToolRun run = RunTool(args, 20);
    EXPECT_EQ(run.status, 2) << c.name << ": " << run.err;
    EXPECT_TRUE(IsOneLine(run.err)) << c.name << ": " << run.err;
    EXPECT_TRUE(run.out.empty()) << c.name << ": " << run.out;
  }
}

TEST(EstimateCommand, UnreadableUrlExitsOneWithOneLine) {
  const std::string closed = "http://127.0.0.1:" + std::to_string(ClosedPort()) + "/start";
  const UsageCase cases[] = {
      {"closed port", {closed}},
      {"closed port, json", {"--json", closed}},
      {"closed port, with limits", {"--max-requests", "3", "--timeout", "2", closed}},
      {"entry outside --hosts", {"--hosts", "site.test,*.site.test", closed}},
      {"not a URL at all", {"::not a url::"}},
      {"empty URL", {""}},
      {"not HTTP", {"gopher://127.0.0.1:1/"}},
      {"a local file is not a site", {"file:///etc/hostname"}},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {ToolPath("orvwebpage"), "estimate"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    ToolRun run = RunTool(args, 30);
    ASSERT_FALSE(run.killed) << c.name;
    EXPECT_EQ(run.status, 1) << c.name << ": " << run.err;
    EXPECT_TRUE(IsOneLine(run.err)) << c.name << ": " << run.err;
    EXPECT_TRUE(run.out.empty()) << c.name << ": " << run.out;
  }
  // The message names what could not be read.
  ToolRun run = RunTool({ToolPath("orvwebpage"), "estimate", closed}, 30);
  EXPECT_NE(run.err.find(closed), std::string::npos) << run.err;
}

// The tool's request count is the server's, and a read site whose estimate
// is 0 (a listing whose pager leads only to pages that are not crawled) is an
// answer, not an error.
TEST(EstimateCommand, ReportsWhatTheSiteServed) {
  struct Case {
    const char* profile;
    long minEstimate;
    long maxEstimate;
    const char* explained;  // a line of --explain's readable form
  };
  const Case cases[] = {
      {"single", 1, 1, "  [No Query String]  plain   1 x 1 = 1  "},
      {"nocrawl", 0, 0, "    last page: 8 x 0 URLs on its page\n"},
      {"shapes", 1, 1000, "  ref                unread  0 x 1 = 0  "},
      {"fail5", 1, 1000,
       "    probes: 100 404, 50 404, 25 404, 13 404, 7 404, 4 ok to 5, 5 ok to 4\n"},
  };
  for (const auto& c : cases) {
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    ToolRun run = RunTool({ToolPath("orvwebpage"), "estimate", "--json", site.Url("/")}, 60);
    ASSERT_EQ(run.status, 0) << c.profile << ": " << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(json.is_object()) << c.profile << ": " << run.out;
    long estimate = json["estimate"];
    EXPECT_GE(estimate, c.minEstimate) << c.profile;
    EXPECT_LE(estimate, c.maxEstimate) << c.profile;
    EXPECT_EQ(json["requests"], site.LogLines().size()) << c.profile;

    // The explanation adds up to the estimate, after the four fields.
    run = RunTool({ToolPath("orvwebpage"), "estimate", "--json", "--explain", site.Url("/")}, 60);
    ASSERT_EQ(run.status, 0) << c.profile << ": " << run.err;
    auto explained = nlohmann::ordered_json::parse(run.out, nullptr, false);
    ASSERT_TRUE(explained.is_object()) << c.profile << ": " << run.out;
    std::vector<std::string> keys;
    for (auto& item : explained.items()) keys.push_back(item.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"url", "estimate", "requests", "seconds", "shapes",
                                              "listings"}));
    long pages = 0;
    long previous = LONG_MAX;
    for (const auto& shape : explained["shapes"]) {
      long shapePages = shape["pages"];
      EXPECT_LE(shapePages, previous) << c.profile << ": largest first";
      previous = shapePages;
      pages += shapePages;
    }
    EXPECT_EQ(pages, estimate) << c.profile;
    run = RunTool({ToolPath("orvwebpage"), "estimate", "--explain", site.Url("/")}, 60);
    ASSERT_EQ(run.status, 0) << c.profile << ": " << run.err;
    EXPECT_NE(run.out.find(c.explained), std::string::npos) << c.profile << ": " << run.out;
  }
}

}  // namespace
