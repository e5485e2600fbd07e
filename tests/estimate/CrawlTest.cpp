// The crawl and the last-page search against sites on loopback: what is
// fetched, what is probed, and the sum that comes out.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>

#include "estimate/EstimateSupport.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

namespace {

long Crawl(OrvWebPageCountEstimate& estimator, std::string url) {
  auto start = std::chrono::steady_clock::now();
  long estimate = estimator.EstimateCount(url.data(), -1);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  return estimate;
}

TEST(Crawl, SitesGiveWhatTheCasesSay) {
  std::ifstream in(ORV_CASES_DIR "/estimate/sites.txt");
  auto site = std::make_unique<LocalHttpServer>();
  auto estimator = std::make_unique<OrvWebPageCountEstimate>();
  std::string name, stopAt;
  int cases = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word == "==") {
      name = line.substr(3), stopAt = "-", ++cases;
      site = std::make_unique<LocalHttpServer>(),
      estimator = std::make_unique<OrvWebPageCountEstimate>();
      OrvHttpLimits::Reset();
    } else if (word == "stop" && !(words >> stopAt)) {
      estimator->StopEstimating();
    } else if (word == "limit") {
      OrvHttpSettings settings;
      words >> settings.maxRequests >> settings.deadlineMs;
      OrvHttpLimits::Set(settings);
    } else if (word == "page" || word == "listing" || word == "endless") {
      std::string path, body;
      words >> path;
      std::getline(words >> std::ws, body);
      Listing listing(path, word == "listing" ? body : "");
      auto endless = [server = site.get()](size_t, httplib::DataSink& sink) {
        return PauseUnlessStopping(server->stopping, 100) && sink.write("<p>", 3);
      };
      site->server.Get(
          path, [=, e = estimator.get()](const httplib::Request& req, httplib::Response& res) {
            if (req.path == stopAt || req.target == stopAt) e->StopEstimating();
            if (word == "listing") return listing(req, res);
            if (word == "endless") return res.set_chunked_content_provider("text/html", endless);
            res.set_content(body.empty() ? "" : Html(body), "text/html");
          });
    } else if (word == "crawl") {
      std::string entry;
      long estimate;
      words >> entry >> estimate;
      ASSERT_TRUE(site->Start());
      EXPECT_EQ(Crawl(*estimator, site->Url(entry)), estimate) << name;
    } else if (word == "paths" || word == "log") {
      std::vector<std::string> expected, got = site->Targets();
      for (std::string target; words >> target;) expected.push_back(target);
      auto path = [](const std::string& target) { return target.substr(0, target.find('?')); };
      if (word == "paths") {
        std::transform(got.begin(), got.end(), got.begin(), path);
        std::sort(got.begin(), got.end());
      } else {
        std::erase_if(got, [&](const auto& t) { return path(t) != path(expected.at(0)); });
      }
      EXPECT_EQ(got, expected) << name;
    }
  }
  EXPECT_GT(cases, 15);
  OrvHttpLimits::Reset();
}

TEST(Crawl, UnreachableEntryGivesZeroAndTheNextCallStartsAfresh) {
  OrvHttpLimits::Reset();
  OrvWebPageCountEstimate estimator;
  std::string url;
  {
    LocalHttpServer gone;
    ASSERT_TRUE(gone.Start());
    url = gone.Url("/");
  }
  EXPECT_EQ(Crawl(estimator, url), 0);
  EXPECT_EQ(estimator.EstimateCount(nullptr, -1), 0);
  LocalHttpServer site;
  site.server.Get(".*", [](const httplib::Request& req, httplib::Response& res) {
    res.set_content(Html(req.path == "/" ? Link("/i?id=1") : ""), "text/html");
  });
  ASSERT_TRUE(site.Start());
  for (int run = 0; run < 2; run++) EXPECT_EQ(Crawl(estimator, site.Url("/")), 2);
  EXPECT_EQ(site.Targets(), std::vector<std::string>({"/", "/i?id=1", "/", "/i?id=1"}));
}

// Fails two below the last failure and otherwise links up to just below that,
// so the search would creep up one page per probe for ever.
TEST(Crawl, LyingPagersAreCutAfterSixtyFourProbes) {
  LocalHttpServer site;
  std::atomic<int> lastFailed = 100;
  site.server.Get("/list", [&](const httplib::Request& req, httplib::Response& res) {
    int page = std::stoi(req.get_param_value("page"));
    if (page > 1 && page >= lastFailed - 2) {
      lastFailed = page;
      return void(res.status = 404);
    }
    std::string top = std::to_string(lastFailed - 2);
    res.set_content(Html(Link("/list?page=1", "1") + Link("/list?page=2", "2") +
                         Link("/list?page=" + top, top)),
                    "text/html");
  });
  OrvWebPageCountEstimate estimator;
  ASSERT_TRUE(site.Start());
  EXPECT_EQ(Crawl(estimator, site.Url("/list?page=1")), 4);
  EXPECT_EQ(site.Targets().size(), 1u + 64u);
  EXPECT_EQ(OrvWebPageCountEstimateImpl().FindLastPage(OrvPageTemplate()), -1);  // no parameter
}

}  // namespace
