#include <gtest/gtest.h>

#include <deque>
#include <set>
#include <string>
#include <vector>

#include "site/SiteTestSupport.h"

namespace {

// A plain breadth-first crawl over HTTP, reading links from the HTML served:
// counts the distinct on-site URLs that answer with an HTML page.
long long CrawlOverHttp(const SampleSite& site, long long limit) {
  std::set<std::string> seen{"/"};
  std::deque<std::string> queue{"/"};
  long long pages = 0;
  OrvHttp http;
  while (!queue.empty() && pages <= limit) {
    std::string target = queue.front();
    queue.pop_front();
    std::string url = site.Url(target);
    if (http.Run(const_cast<char*>(url.c_str()), -1, ORV_HTTP_GET) != ORV_HTTP_OK) continue;
    OrvString body;
    http.GetBody(body);
    std::string html(body.buf, size_t(body.len));
    if (html.rfind("<!DOCTYPE html>", 0) != 0) continue;
    ++pages;
    for (const std::string& href : Hrefs(html))
      if (href.size() && href[0] == '/' && (href.size() == 1 || href[1] != '/') &&
          seen.insert(href).second)
        queue.push_back(href);
  }
  return pages;
}

TEST(SampleSiteCrawl, TheTrueCountIsWhatAFullCrawlFinds) {
  const std::vector<std::vector<std::string>> sites = {
      {"--profile", "example"}, {"--profile", "offset"}, {"--profile", "nocrawl"},
      {"--profile", "shapes"},  {"--profile", "window"}, {"--pages", "600", "--seed", "9"},
  };
  for (const auto& args : sites) {
    SCOPED_TRACE(args[1]);
    SampleSite site(args);
    ASSERT_TRUE(site.Ok()) << site.Error();
    EXPECT_EQ(CrawlOverHttp(site, site.TruePages() + 100), site.TruePages());
  }
}

TEST(SampleSiteCrawl, ArticlesCarryLongTextAndNavigationPagesDoNot) {
  // Long paragraphs side by side make an article; plain pages hold short notes only.
  struct Case {
    const char* path;
    bool article;
  };
  const std::vector<Case> cases = {{"/", false},
                                   {"/story?id=3", true},
                                   {"/post?pid=2", true},
                                   {"/product?sku=1", true},
                                   {"/help?topic=2", false},
                                   {"/news?page=1", false},
                                   {"/tag?name=river", false}};
  SampleSite site({"--pages", "600"});
  ASSERT_TRUE(site.Ok()) << site.Error();
  static const std::regex paragraph("<p>([^<]*)</p>");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    Page page = Get(site.Url(c.path));
    ASSERT_EQ(page.status, ORV_HTTP_OK);
    int longOnes = 0;
    for (std::sregex_iterator it(page.body.begin(), page.body.end(), paragraph), end; it != end;
         ++it)
      longOnes += (*it)[1].length() >= 200;
    if (c.article)
      EXPECT_GE(longOnes, 2);
    else
      EXPECT_EQ(longOnes, 0);
  }
}

}  // namespace
