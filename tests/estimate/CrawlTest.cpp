// The crawl against a site on loopback: what is fetched, what is only
// counted, and the sum that comes out.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "EstimateSite.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

namespace {

long Estimate(OrvWebPageCountEstimate& estimator, const std::string& url) {
  std::string text = url;
  return estimator.EstimateCount(text.data(), long(text.size()));
}

std::string ItemLinks(const std::string& path, int count) {
  std::string out;
  for (int i = 1; i <= count; i++) out += Link(path + "?id=" + std::to_string(i), "item");
  return out;
}

struct CrawlCase {
  const char* name;
  std::function<void(EstimateSite&, OrvWebPageCountEstimate&)> build;
  const char* entry;
  long estimate;
  std::vector<std::string> paths;  // one per request, sorted
};

const CrawlCase kCrawlCases[] = {
    {"PageWithoutLinks",
     [](EstimateSite& site, OrvWebPageCountEstimate&) { site.Serve("/", Html("<p>hello</p>")); },
     "/",
     1,
     {"/"}},
    {"EmptyPage",
     [](EstimateSite& site, OrvWebPageCountEstimate&) { site.Serve("/", ""); },
     "/",
     1,
     {"/"}},
    {"ThreeLinksOfOneShapeAreFetchedOnce",
     [](EstimateSite& site, OrvWebPageCountEstimate&) {
       site.Serve("/", Html(ItemLinks("/item", 3)));
       site.Serve("/item", Html("<p>an item</p>"));
     },
     "/",
     4,
     {"/", "/item"}},
    {"FailedFirstUrlOfAShapeCountsNothing",
     [](EstimateSite& site, OrvWebPageCountEstimate&) {
       site.Serve("/", Html(ItemLinks("/item", 3)));
       auto served = std::make_shared<std::atomic<int>>(0);
       site.Serve("/item", [served](const httplib::Request&, std::string& body) {
         if ((*served)++ == 0) return false;
         body = Html("<p>an item</p>");
         return true;
       });
     },
     "/",
     1,
     {"/", "/item"}},
    {"ContentPageLinksAreNotFollowed",
     [](EstimateSite& site, OrvWebPageCountEstimate&) {
       site.Serve("/", Html(Link("/article?id=1", "read")));
       site.Serve("/article", Html(ArticleText() + Link("/more?m=1", "more")));
       site.Serve("/more", Html("<p>more</p>"));
     },
     "/",
     2,
     {"/", "/article"}},
    {"PlainPageLinksAreFollowedBreadthFirst",
     [](EstimateSite& site, OrvWebPageCountEstimate&) {
       site.Serve("/", Html(Link("/a?x=1", "a")));
       site.Serve("/a", Html(Link("/b?y=1", "b") + Link("/", "home")));
       site.Serve("/b", Html(Link("/a?x=2", "a again")));
     },
     "/",
     5,
     {"/", "/a", "/b"}},
    {"StopBeforeTheCallReadsTheEntryOnly",
     [](EstimateSite& site, OrvWebPageCountEstimate& estimator) {
       site.Serve("/", Html(ItemLinks("/item", 3) + "<p>x</p>"));
       site.Serve("/item", Html("<p>an item</p>"));
       estimator.StopEstimating();
     },
     "/",
     1,
     {"/"}},
    {"StopInTheMiddleOfAPageEndsOnlyThatPage",
     [](EstimateSite& site, OrvWebPageCountEstimate& estimator) {
       site.Serve("/", Html(Link("/a?x=1", "a") + Link("/b?y=1", "b")));
       // The stop lands while /a is fetched, so its walk sees it at once.
       site.Serve("/a", [&estimator](const httplib::Request&, std::string& body) {
         estimator.StopEstimating();
         body = Html(Link("/c?w=1", "c"));
         return true;
       });
       site.Serve("/b", Html(Link("/d?v=1", "d")));
       site.Serve("/c", Html("<p>c</p>"));
       site.Serve("/d", Html("<p>d</p>"));
     },
     "/",
     4,
     {"/", "/a", "/b", "/d"}},
    {"OffSiteAndUnlistedExtensionsAreNotCrawled",
     [](EstimateSite& site, OrvWebPageCountEstimate&) {
       site.Serve("/",
                  Html(Link("http://elsewhere.test/x?e=1", "off") + Link("/file.pdf?f=1", "pdf") +
                       Link("javascript:go()", "js") + Link("/page.html?h=1", "html")));
       site.Serve("/page.html", Html("<p>page</p>"));
     },
     "/",
     2,
     {"/", "/page.html"}},
};

class Crawl : public testing::TestWithParam<CrawlCase> {
 protected:
  void SetUp() override { OrvHttpLimits::Reset(); }
};

TEST_P(Crawl, FetchesOnePagePerShapeAndSums) {
  const CrawlCase& c = GetParam();
  EstimateSite site;
  OrvWebPageCountEstimate estimator;
  c.build(site, estimator);
  ASSERT_TRUE(site.Start());
  EXPECT_EQ(Estimate(estimator, site.Url(c.entry)), c.estimate);
  EXPECT_EQ(site.Paths(), c.paths);
}

INSTANTIATE_TEST_SUITE_P(Sites, Crawl, testing::ValuesIn(kCrawlCases),
                         [](const testing::TestParamInfo<CrawlCase>& info) {
                           return std::string(info.param.name);
                         });

TEST(CrawlEdges, UnreachableEntryGivesZero) {
  OrvHttpLimits::Reset();
  std::string url;
  {
    EstimateSite site;
    ASSERT_TRUE(site.Start());
    url = site.Url("/");
  }
  OrvWebPageCountEstimate estimator;
  EXPECT_EQ(Estimate(estimator, url), 0);
  EXPECT_EQ(Estimate(estimator, ""), 0);
  EXPECT_EQ(estimator.EstimateCount(nullptr, -1), 0);
}

TEST(CrawlEdges, CallsOneAfterAnotherAndSharedCopiesGiveTheSameAnswer) {
  OrvHttpLimits::Reset();
  EstimateSite site;
  site.Serve("/", Html(ItemLinks("/item", 3)));
  site.Serve("/item", Html("<p>an item</p>"));
  ASSERT_TRUE(site.Start());
  auto* first = new OrvWebPageCountEstimate;
  EXPECT_EQ(Estimate(*first, site.Url("/")), 4);
  OrvWebPageCountEstimate copy(*first);
  OrvWebPageCountEstimate assigned;
  assigned = copy;
  assigned = assigned;
  delete first;
  EXPECT_EQ(Estimate(copy, site.Url("/")), 4);
  EXPECT_EQ(Estimate(assigned, site.Url("/")), 4);
  EXPECT_EQ(site.Paths(), std::vector<std::string>({"/", "/", "/", "/item", "/item", "/item"}));
}

}  // namespace
