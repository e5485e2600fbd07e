// The crawl and the last-page search against sites on loopback: what is
// fetched, what is probed, and the sum that comes out.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "estimate/EstimateSupport.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

namespace {

using Site = httplib::Server;

void Serve(Site& site, const std::string& path, const std::string& body) {
  site.Get(path, [body](const httplib::Request&, httplib::Response& res) {
    res.set_content(body, "text/html");
  });
}

std::string Links(const std::string& path, int count) {
  std::string out;
  for (int i = 1; i <= count; i++) out += Link(path + "?id=" + std::to_string(i));
  return out;
}

std::vector<std::string> Paths(LocalHttpServer& server) {
  std::vector<std::string> paths;
  for (const std::string& target : server.Targets())
    paths.push_back(target.substr(0, target.find('?')));
  std::sort(paths.begin(), paths.end());
  return paths;
}

struct CrawlCase {
  const char* name;
  std::function<void(LocalHttpServer&, OrvWebPageCountEstimate&)> build;
  const char* entry;
  long estimate;
  std::vector<std::string> paths;  // one per request, sorted
};

const CrawlCase kCrawls[] = {
    {"PageWithoutLinks",
     [](auto& s, auto&) { Serve(s.server, "/", Html("<p>hello</p>")); },
     "/",
     1,
     {"/"}},
    {"EmptyPage", [](auto& s, auto&) { Serve(s.server, "/", ""); }, "/", 1, {"/"}},
    {"LinksOfOneShapeAreFetchedOnce",
     [](auto& s, auto&) {
       Serve(s.server, "/", Html(Links("/item", 3)));
       Serve(s.server, "/item", Html("<p>an item</p>"));
     },
     "/",
     4,
     {"/", "/item"}},
    {"FailedFirstUrlOfAShapeCountsNothing",
     [](auto& s, auto&) { Serve(s.server, "/", Html(Links("/item", 3))); },
     "/",
     1,
     {"/", "/item"}},
    {"ContentPageLinksAreNotFollowed",
     [](auto& s, auto&) {
       std::string words(90, 'w');
       Serve(s.server, "/", Html(Link("/article?id=1")));
       Serve(s.server, "/article",
             Html("<div><p>" + words + "</p><p>" + words + "</p></div>" + Link("/more?m=1")));
       Serve(s.server, "/more", Html("<p>more</p>"));
     },
     "/",
     2,
     {"/", "/article"}},
    {"PlainPageLinksAreFollowedBreadthFirst",
     [](auto& s, auto&) {
       Serve(s.server, "/", Html(Link("/a?x=1")));
       Serve(s.server, "/a", Html(Link("/b?y=1") + Link("/")));
       Serve(s.server, "/b", Html(Link("/a?x=2")));
     },
     "/",
     5,
     {"/", "/a", "/b"}},
    {"StopBeforeTheCallReadsTheEntryOnly",
     [](auto& s, auto& estimator) {
       Serve(s.server, "/", Html(Links("/item", 3)));
       Serve(s.server, "/item", Html("<p>an item</p>"));
       estimator.StopEstimating();
     },
     "/",
     1,
     {"/"}},
    {"StopInTheMiddleOfAPageEndsOnlyThatPage",
     [](auto& s, auto& estimator) {
       Serve(s.server, "/", Html(Link("/a?x=1") + Link("/b?y=1")));
       // The stop lands while /a is fetched, so its walk sees it at once.
       s.server.Get("/a", [&estimator](const httplib::Request&, httplib::Response& res) {
         estimator.StopEstimating();
         res.set_content(Html(Link("/c?w=1")), "text/html");
       });
       Serve(s.server, "/b", Html(Link("/d?v=1")));
       Serve(s.server, "/c", Html("<p>c</p>"));
       Serve(s.server, "/d", Html("<p>d</p>"));
     },
     "/",
     4,
     {"/", "/a", "/b", "/d"}},
    {"OffSiteAndUnlistedExtensionsAreNotCrawled",
     [](auto& s, auto&) {
       Serve(s.server, "/",
             Html(Link("http://elsewhere.test/x?e=1") + Link("/file.pdf?f=1") +
                  Link("javascript:go()") + Link("/page.html?h=1")));
       Serve(s.server, "/page.html", Html("<p>page</p>"));
     },
     "/",
     2,
     {"/", "/page.html"}},
    // 12 pager links and 8 items that fail: the listing alone counts, 13 pages
    // of 20 URLs, and its pager links, of its own shape, add no sightings.
    {"ThirteenPagesOfTwentyUrls",
     [](auto& s, auto&) {
       s.server.Get("/list", Listing{.pages = 13, .lastForHigher = true, .items = 8});
     },
     "/list?page=1",
     260,
     {"/item", "/list", "/list"}},
    {"LastPageFoundButNothingToCrawl",
     [](auto& s, auto&) {
       s.server.Get("/list.php", Listing{.path = "/list.php", .lastForHigher = true});
     },
     "/list.php?page=1",
     0,
     {"/list.php", "/list.php"}},
    {"ListingByOffsets",
     [](auto& s, auto&) {
       s.server.Get("/list",
                    Listing{.pages = 7, .items = 3, .param = "start", .step = 20, .offset = 0});
     },
     "/list?start=0",
     63,
     {"/item", "/list", "/list", "/list", "/list", "/list", "/list"}},
    // The entry, 40 articles of one shape and a listing of 13 pages of 20 URLs.
    {"EntryArticlesAndListing",
     [](auto& s, auto&) {
       std::string words(90, 'w');
       Serve(s.server, "/", Html(Links("/article", 40) + Link("/list?page=1")));
       Serve(s.server, "/article", Html("<div><p>" + words + "</p><p>" + words + "</p></div>"));
       s.server.Get("/list", Listing{.pages = 13, .lastForHigher = true, .items = 8});
     },
     "/",
     1 + 40 + 260,
     {"/", "/article", "/item", "/list", "/list"}},
    // Every page links two parameter names never seen before: only the budget ends it.
    {"NewShapesForeverStopAtTheBudget",
     [](auto& s, auto&) {
       OrvHttpSettings settings;
       settings.maxRequests = 40;
       OrvHttpLimits::Set(settings);
       s.server.Get("/p", [](const httplib::Request& req, httplib::Response& res) {
         long k = req.params.empty() ? 0 : std::atol(req.params.begin()->first.c_str() + 1);
         res.set_content(Html(Link("/p?k" + std::to_string(2 * k + 1) + "=1") +
                              Link("/p?k" + std::to_string(2 * k + 2) + "=1")),
                         "text/html");
       });
     },
     "/p", 40, std::vector<std::string>(40, "/p")},
    // A page that never ends behind a readable entry: the deadline ends the
    // run, which reports what it had.
    {"EndlessPageStopsAtTheDeadline",
     [](auto& s, auto&) {
       OrvHttpSettings settings;
       settings.deadlineMs = 1000;
       OrvHttpLimits::Set(settings);
       Serve(s.server, "/", Html(Link("/slow?a=1") + Link("/slow?b=1")));
       s.server.Get("/slow", [&s](const httplib::Request&, httplib::Response& res) {
         res.set_chunked_content_provider("text/html", [&s](size_t, httplib::DataSink& sink) {
           return PauseUnlessStopping(s.stopping, 100) && sink.write("<p>", 3);
         });
       });
     },
     "/",
     1,
     {"/", "/slow"}},
};

class Crawl : public testing::TestWithParam<CrawlCase> {
 protected:
  void SetUp() override { OrvHttpLimits::Reset(); }
  void TearDown() override { OrvHttpLimits::Reset(); }
};

TEST_P(Crawl, FetchesOnePagePerShapeAndSums) {
  const CrawlCase& c = GetParam();
  LocalHttpServer site;
  OrvWebPageCountEstimate estimator;
  c.build(site, estimator);
  ASSERT_TRUE(site.Start());
  std::string url = site.Url(c.entry);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(estimator.EstimateCount(url.data(), -1), c.estimate);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(Paths(site), c.paths);
}

INSTANTIATE_TEST_SUITE_P(Sites, Crawl, testing::ValuesIn(kCrawls),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(CrawlEdges, UnreachableEntryGivesZeroAndTheNextCallStartsAfresh) {
  OrvHttpLimits::Reset();
  std::string url;
  {
    LocalHttpServer gone;
    ASSERT_TRUE(gone.Start());
    url = gone.Url("/");
  }
  OrvWebPageCountEstimate estimator;
  EXPECT_EQ(estimator.EstimateCount(url.data(), -1), 0);
  EXPECT_EQ(estimator.EstimateCount(nullptr, -1), 0);
  LocalHttpServer site;
  Serve(site.server, "/", Html(Links("/item", 3)));
  Serve(site.server, "/item", Html("<p>an item</p>"));
  ASSERT_TRUE(site.Start());
  url = site.Url("/");
  for (int run = 0; run < 2; run++) EXPECT_EQ(estimator.EstimateCount(url.data(), -1), 4);
  EXPECT_EQ(Paths(site), std::vector<std::string>({"/", "/", "/item", "/item"}));
}

// The estimator with its entry and the template of /list?page=N.
struct Probing {
  OrvWebPageCountEstimateImpl estimator;
  OrvPageTemplate pageTemplate;

  int32_t FindLastPage(LocalHttpServer& site) {
    OrvHttpLimits::Reset();
    OrvString entry(site.Url("/list?page=1").c_str(), -1);
    estimator.SetEntryUrl(entry);
    pageTemplate.url = entry;
    pageTemplate.Parse(1);
    pageTemplate.paramIndex = 0;
    pageTemplate.step = 1;
    pageTemplate.offset = 1;
    int32_t last = estimator.FindLastPage(pageTemplate);
    // Nothing of the probed pages stays behind.
    EXPECT_EQ(estimator.links.map.count + estimator.numbers.map.count, 0u);
    return last;
  }
};

TEST(LastPage, ProbesFromPageHundred) {
  struct Case {
    Listing listing;  // with 0 pages none is served
    int stopAt;       // the probe of this page stops the estimator; -1: stopped before
    int32_t lastPage;
    std::vector<int> probes;  // in order
  };
  const Case cases[] = {
      {{.pages = 13, .lastForHigher = true}, 0, 13, {100}},
      {{.pages = 5}, 0, 5, {100, 50, 25, 13, 7, 4, 5}},
      {{.pages = 100000, .window = 3}, 0, 104, {100}},  // page 100 links beyond itself
      {{.pages = 99}, 0, 99, {100, 50}},  // a pager ending just below the last failure
      {{.pages = 0}, 0, -1, {100, 50, 25, 13, 7, 4, 2, 1}},
      {{.pages = 13, .lastForHigher = true}, -1, -1, {}},
      {{.pages = 5}, 50, -1, {100, 50}},
      // Page 50 links up to 70: the next page would be 65, which 70 passes, so
      // the stop ends the search with 70 itself.
      {{.pages = 70}, 50, 70, {100, 50}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.listing.pages) + " pages, stop at " + std::to_string(c.stopAt));
    LocalHttpServer site;
    Probing probing;
    if (c.listing.pages)
      site.server.Get("/list", [&](const httplib::Request& req, httplib::Response& res) {
        if (req.get_param_value("page") == std::to_string(c.stopAt))
          probing.estimator.StopEstimating();
        c.listing(req, res);
      });
    if (c.stopAt < 0) probing.estimator.StopEstimating();
    ASSERT_TRUE(site.Start());
    EXPECT_EQ(probing.FindLastPage(site), c.lastPage);
    std::vector<std::string> probes;
    for (int page : c.probes) probes.push_back("/list?page=" + std::to_string(page));
    EXPECT_EQ(site.Targets(), probes);
  }
}

// Fails two below the last failure and otherwise links up to just below that,
// so the search would creep up one page per probe for ever.
TEST(LastPage, LyingPagersAreCutAfterSixtyFourProbes) {
  LocalHttpServer site;
  std::atomic<int> lastFailed = 100;
  site.server.Get("/list", [&](const httplib::Request& req, httplib::Response& res) {
    int page = std::stoi(req.get_param_value("page"));
    if (page >= lastFailed - 2) {
      lastFailed = page;
      return void(res.status = 404);
    }
    std::string top = std::to_string(lastFailed - 2);
    res.set_content(Html(Link("/list?page=1", "1") + Link("/list?page=2", "2") +
                         Link("/list?page=" + top, top)),
                    "text/html");
  });
  ASSERT_TRUE(site.Start());
  EXPECT_EQ(Probing().FindLastPage(site), -1);
  EXPECT_EQ(site.Targets().size(), 64u);
  EXPECT_EQ(OrvWebPageCountEstimateImpl().FindLastPage(OrvPageTemplate()), -1);  // no parameter
}

}  // namespace
