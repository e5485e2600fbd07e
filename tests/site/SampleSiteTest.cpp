// The sample site's first line states how many pages it holds; the estimator
// tests measure against that number, so it must be what a full crawl finds.

#include <gtest/gtest.h>
#include <httplib.h>

#include <deque>
#include <regex>
#include <set>

#include "support/SampleSite.h"

namespace {

// A plain breadth-first crawl: the distinct on-site targets that answer
// with an HTML page, following the links of each.
long long CrawlCount(const SampleSite& site, long long limit) {
  static const std::regex href("href=\"(/[^/\"][^\"]*|/)\"");
  httplib::Client http(site.Url().substr(0, site.Url().size() - 1));
  std::set<std::string> seen{"/"};
  std::deque<std::string> queue{"/"};
  long long pages = 0;
  while (!queue.empty() && pages <= limit) {
    auto response = http.Get(queue.front());
    queue.pop_front();
    if (!response || response->status != 200 || response->body.rfind("<!DOCTYPE html>", 0) != 0)
      continue;
    ++pages;
    const std::string& html = response->body;
    for (std::sregex_iterator it(html.begin(), html.end(), href), end; it != end; ++it) {
      std::string target = std::regex_replace((*it)[1].str(), std::regex("&amp;"), "&");
      if (seen.insert(target).second) queue.push_back(target);
    }
  }
  return pages;
}

TEST(SampleSite, TheTrueCountIsWhatAFullCrawlFinds) {
  struct Case {
    std::vector<std::string> args;
    long long least, most;  // the estimator tests' expectations rest on these
  };
  const Case cases[] = {
      {{"--profile", "example"}, 158, 158},
      {{"--profile", "last13"}, 14, 14},
      {{"--profile", "fail5"}, 6, 6},
      {{"--profile", "window"}, 301, 301},
      {{"--profile", "offset"}, 253, 253},
      {{"--profile", "nocrawl"}, 9, 9},
      {{"--profile", "shapes"}, 8, 8},
      {{"--profile", "single"}, 1, 1},
      {{"--pages", "600", "--seed", "9"}, 480, 720},  // about as many as asked for
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[1]);
    SampleSite site(c.args);
    ASSERT_TRUE(site.Ok()) << site.Error();
    EXPECT_GE(site.TruePages(), c.least);
    EXPECT_LE(site.TruePages(), c.most);
    EXPECT_EQ(CrawlCount(site, site.TruePages() + 100), site.TruePages());
  }
}

// The site is started by hand too: a bad option is a usage error, status 2 as
// the tool gives, naming the option.
TEST(SampleSite, BadOptionsExitAsTheToolDoes) {
  const std::vector<std::string> bad[] = {{"--frob"}, {"--profile", "nosuch"}, {"--pages", "x"}};
  for (const auto& args : bad) {
    SCOPED_TRACE(args[0]);
    std::vector<std::string> argv = {ToolPath("orvwebpage-sample-site")};
    argv.insert(argv.end(), args.begin(), args.end());
    ToolRun run = RunTool(argv, 20);
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find(args.back()), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");
  }
}

}  // namespace
