// The last-page search and the estimates of listings, against a site on
// loopback whose request log shows the pages probed, in order.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "EstimateSite.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

namespace {

std::vector<std::string> Targets(const std::string& path, const std::vector<int>& pages,
                                 const std::string& param = "page") {
  std::vector<std::string> out;
  for (int p : pages) out.push_back(path + "?" + param + "=" + std::to_string(p));
  return out;
}

Listing Pages(int pages, bool lastForHigher, int window = 0) {
  Listing l;
  l.pages = pages;
  l.lastForHigher = lastForHigher;
  l.window = window;
  return l;
}

struct ProbeCase {
  const char* name;
  int pages;  // of the listing at /list; 0 serves none
  bool lastForHigher;
  int window;
  int stopAt;  // the probe of this page stops the estimator; -1: stopped before
  int32_t lastPage;
  std::vector<int> probes;  // the pages probed, in order
};

const ProbeCase kProbeCases[] = {
    {"ServesItsLastPageForHigherNumbers", 13, true, 0, 0, 13, {100}},
    {"FailsPastItsEnd", 5, false, 0, 0, 5, {100, 50, 25, 13, 7, 4, 5}},
    {"PageHundredLinksBeyondItself", 100000, false, 3, 0, 104, {100}},
    {"PagerEndingJustBelowTheLastFailure", 99, false, 0, 0, 99, {100, 50}},
    {"NoPageAtAll", 0, false, 0, 0, -1, {100, 50, 25, 13, 7, 4, 2, 1}},
    {"StoppedBeforeTheSearch", 13, true, 0, -1, -1, {}},
    {"StoppedDuringAFailingProbe", 5, false, 0, 50, -1, {100, 50}},
    // Page 50 links up to 70: the next page would be 65, which 70 passes, so
    // the stop ends the search with 70 itself.
    {"StoppedDuringAProbeThatReadsANumber", 70, false, 0, 50, 70, {100, 50}},
};

// The estimator with its entry and the template of /list?page=N.
struct ProbeSetup {
  OrvWebPageCountEstimateImpl estimator;
  OrvPageTemplate pageTemplate;

  explicit ProbeSetup(const EstimateSite& site) {
    OrvString entry(site.Url("/list?page=1").c_str(), -1);
    estimator.SetEntryUrl(entry);
    pageTemplate.url = entry;
    pageTemplate.Parse(1);
    pageTemplate.paramIndex = 0;
    pageTemplate.step = 1;
    pageTemplate.offset = 1;
  }
};

class LastPage : public testing::TestWithParam<ProbeCase> {
 protected:
  void SetUp() override { OrvHttpLimits::Reset(); }
};

TEST_P(LastPage, ProbesFromPageHundred) {
  const ProbeCase& c = GetParam();
  EstimateSite site;
  ASSERT_TRUE(site.Start());
  ProbeSetup s(site);
  Listing listing = Pages(c.pages, c.lastForHigher, c.window);
  if (c.pages) {
    OrvWebPageCountEstimateImpl* estimator = &s.estimator;
    int stopAt = c.stopAt;
    site.Serve("/list", [=](const httplib::Request& request, std::string& body) {
      if (request.get_param_value("page") == std::to_string(stopAt)) estimator->StopEstimating();
      return listing.Render(request, body);
    });
  }
  if (c.stopAt < 0) s.estimator.StopEstimating();
  EXPECT_EQ(s.estimator.FindLastPage(s.pageTemplate), c.lastPage);
  EXPECT_EQ(site.Log(), Targets("/list", c.probes));
  // Nothing of the probed pages stays behind.
  EXPECT_EQ(s.estimator.links.map.count, 0u);
  EXPECT_EQ(s.estimator.numbers.map.count, 0u);
}

INSTANTIATE_TEST_SUITE_P(Listings, LastPage, testing::ValuesIn(kProbeCases),
                         [](const testing::TestParamInfo<ProbeCase>& info) {
                           return std::string(info.param.name);
                         });

TEST(LastPageEdges, LyingPagersAreCutAfterSixtyFourProbes) {
  OrvHttpLimits::Reset();
  EstimateSite site;
  // Fails two below the last failure and otherwise links up to just below
  // that, so the search creeps up one page per probe for ever.
  auto lastFailed = std::make_shared<std::atomic<int>>(100);
  site.Serve("/list", [lastFailed](const httplib::Request& request, std::string& body) {
    int page = std::stoi(request.get_param_value("page"));
    if (page >= *lastFailed - 2) {
      *lastFailed = page;
      return false;
    }
    std::string top = std::to_string(*lastFailed - 2);
    body = Html(Link("/list?page=1", "1") + Link("/list?page=2", "2") +
                Link("/list?page=" + top, top));
    return true;
  });
  ASSERT_TRUE(site.Start());
  ProbeSetup s(site);
  EXPECT_EQ(s.estimator.FindLastPage(s.pageTemplate), -1);
  EXPECT_EQ(site.Log().size(), 64u);
}

TEST(LastPageEdges, TemplateWithoutPageParameterProbesNothing) {
  OrvWebPageCountEstimateImpl estimator;
  OrvPageTemplate pageTemplate;
  EXPECT_EQ(estimator.FindLastPage(pageTemplate), -1);
}

struct ListingCase {
  const char* name;
  std::function<void(EstimateSite&)> build;
  const char* entry;
  long estimate;
  const char* listingPath;
  std::vector<std::string> listingLog;
  std::vector<std::string> paths;  // every request's path, sorted
};

const ListingCase kListingCases[] = {
    // 12 pager links and 8 items: 20 distinct URLs on the crawled page. The
    // items fail, so the listing alone counts, and its pager links, of the
    // listing's own shape, add no sightings.
    {"ThirteenPagesOfTwentyUrls",
     [](EstimateSite& site) {
       Listing l = Pages(13, true);
       l.items = 8;
       ServeListing(site, l);
     },
     "/list?page=1",
     260,
     "/list",
     Targets("/list", {1, 100}),
     {"/item", "/list", "/list"}},
    {"LastPageFoundButNothingToCrawl",
     [](EstimateSite& site) {
       Listing l = Pages(13, true);
       l.path = "/list.php";
       ServeListing(site, l);
     },
     "/list.php?page=1",
     0,
     "/list.php",
     Targets("/list.php", {1, 100}),
     {"/list.php", "/list.php"}},
    {"ListingByOffsets",
     [](EstimateSite& site) {
       Listing l = Pages(7, false);
       l.param = "start";
       l.step = 20;
       l.offset = 0;
       l.items = 3;
       ServeListing(site, l);
     },
     "/list?start=0",
     63,
     "/list",
     Targets("/list", {0, 1980, 980, 480, 240, 120}, "start"),
     {"/item", "/list", "/list", "/list", "/list", "/list", "/list"}},
    // The entry page, 40 articles of one shape and a listing of 13 pages of
    // 20 URLs: 1 + 40 + 260.
    {"WorkedExample",
     [](EstimateSite& site) {
       std::string links;
       for (int i = 1; i <= 40; i++)
         links += "<li>" + Link("/article?id=" + std::to_string(i), "Article") + "</li>";
       site.Serve("/", Html("<ul>" + links + "</ul>" + Link("/list?page=1", "All items")));
       site.Serve("/article", Html(ArticleText() + Link("/elsewhere?z=1", "more")));
       Listing l = Pages(13, true);
       l.items = 8;
       ServeListing(site, l);
     },
     "/",
     301,
     "/list",
     Targets("/list", {1, 100}),
     {"/", "/article", "/item", "/list", "/list"}},
};

class ListingEstimate : public testing::TestWithParam<ListingCase> {
 protected:
  void SetUp() override { OrvHttpLimits::Reset(); }
};

TEST_P(ListingEstimate, CountsPagesTimesUrls) {
  const ListingCase& c = GetParam();
  EstimateSite site;
  c.build(site);
  ASSERT_TRUE(site.Start());
  OrvWebPageCountEstimate estimator;
  std::string url = site.Url(c.entry);
  EXPECT_EQ(estimator.EstimateCount(url.data(), -1), c.estimate);
  EXPECT_EQ(site.Log(c.listingPath), c.listingLog);
  EXPECT_EQ(site.Paths(), c.paths);
}

INSTANTIATE_TEST_SUITE_P(Sites, ListingEstimate, testing::ValuesIn(kListingCases),
                         [](const testing::TestParamInfo<ListingCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
