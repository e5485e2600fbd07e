// What an estimate is made of, read after EstimateCount on sample-site
// profiles whose every page is known.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "support/SampleSite.h"

namespace {

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, size_t(s.len)) : ""; }

TEST(Explain, ShapesAddUpAndListingsShowTheirProbes) {
  struct Case {
    const char* profile;
    std::vector<int> kinds;                           // of all shapes, sorted
    long lastPage;                                    // of the one listing; 0: no listing
    std::vector<std::tuple<long, int, long>> probes;  // page, outcome, last number
  };
  const Case cases[] = {
      {"single", {ORV_PAGE_PLAIN}, 0, {}},
      {"shapes",
       {ORV_PAGE_UNREAD, ORV_PAGE_CONTENT, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN},
       0,
       {}},
      // Above 5 the listing answers 404; page 4 links up to 5 and page 5 up to 4.
      {"fail5",
       {ORV_PAGE_LISTING, ORV_PAGE_PLAIN},
       5,
       {{100, ORV_PROBE_UNFETCHED, -1},
        {50, ORV_PROBE_UNFETCHED, -1},
        {25, ORV_PROBE_UNFETCHED, -1},
        {13, ORV_PROBE_UNFETCHED, -1},
        {7, ORV_PROBE_UNFETCHED, -1},
        {4, ORV_PROBE_PAGER, 5},
        {5, ORV_PROBE_PAGER, 4}}},
      // Page 100 shows page 13, whose pager ends at 12.
      {"last13", {ORV_PAGE_LISTING, ORV_PAGE_PLAIN}, 13, {{100, ORV_PROBE_PAGER, 12}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.profile);
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    OrvWebPageCountEstimate estimator;
    std::string url = site.Url("/");
    long result = estimator.EstimateCount(url.data(), -1);
    std::set<std::string> requested;
    for (const std::string& target : site.LogLines()) requested.insert(site.Url(target));
    uint32_t sum = 0;
    std::vector<int> kinds;
    for (int i = 0; i < estimator.GetShapeCount(); i++) {
      OrvEstimateShape shape{};
      ASSERT_EQ(estimator.FetchShape(i, shape), 1);
      sum += uint32_t(shape.estimate) * uint32_t(shape.sightings);
      kinds.push_back(shape.kind);
      EXPECT_EQ(shape.read, shape.kind != ORV_PAGE_UNREAD);
      EXPECT_EQ(requested.count(Text(shape.url)), 1u) << Text(shape.url);
      EXPECT_EQ(shape.listing, shape.kind == ORV_PAGE_LISTING ? 0 : -1);
    }
    EXPECT_EQ(long(int32_t(sum)), result);
    std::sort(kinds.begin(), kinds.end());
    EXPECT_EQ(kinds, c.kinds);
    // One request per shape, and one per probe.
    EXPECT_EQ(site.LogLines().size(), size_t(estimator.GetShapeCount()) + c.probes.size());
    ASSERT_EQ(estimator.GetListingCount(), c.lastPage ? 1 : 0);
    OrvEstimateListing listing{};
    if (!c.lastPage) continue;
    ASSERT_EQ(estimator.FetchListing(0, listing), 1);
    EXPECT_EQ(Text(listing.pageParam) + " " + std::to_string(listing.step) + " " +
                  std::to_string(listing.offset) + " " + std::to_string(listing.lastPage),
              "page 1 1 " + std::to_string(c.lastPage));
    OrvEstimateShape shape{};
    estimator.FetchShape(listing.shape, shape);
    EXPECT_EQ(shape.estimate, listing.lastPage * listing.urlCount);
    ASSERT_EQ(listing.probeCount, int(c.probes.size()));
    for (int i = 0; i < listing.probeCount; i++) {
      OrvEstimateProbe probe{};
      ASSERT_EQ(estimator.FetchProbe(0, i, probe), 1);
      auto [page, outcome, lastNumber] = c.probes[size_t(i)];
      EXPECT_EQ(std::tuple(probe.page, probe.outcome, probe.lastNumber, probe.httpStatus),
                std::tuple(page, outcome, lastNumber, outcome == ORV_PROBE_PAGER ? 200 : 404))
          << i;
    }
  }
}

// A progress display asks the estimator what it is doing as each request
// starts; the next run replaces what the last one explained.
TEST(Explain, PhaseFollowsTheRunAndTheNextRunReplacesTheLast) {
  SampleSite fail5({"--profile", "fail5"}), single({"--profile", "single"});
  ASSERT_TRUE(fail5.Ok() && single.Ok());
  struct Seen {
    OrvWebPageCountEstimate estimator;
    std::vector<std::pair<std::string, int>> starts;
  } seen;
  OrvHttpLimits::Reset();
  OrvHttpLimits::SetProgress(
      [](const OrvHttpProgress& p, void* context) {
        auto* s = static_cast<Seen*>(context);
        if (size_t(p.requests) > s->starts.size())
          s->starts.push_back({p.url, s->estimator.GetPhase()});
      },
      &seen);
  std::string url = fail5.Url("/");
  seen.estimator.EstimateCount(url.data(), -1);
  OrvHttpLimits::Reset();
  ASSERT_EQ(seen.starts.size(), 9u);
  for (const auto& [url, phase] : seen.starts) {
    bool crawled = url == fail5.Url("/") || url == fail5.Url("/list?page=1");
    EXPECT_EQ(phase, crawled ? ORV_ESTIMATE_CRAWLING : ORV_ESTIMATE_PROBING) << url;
  }
  OrvWebPageCountEstimate& estimator = seen.estimator;
  ASSERT_EQ(estimator.GetListingCount(), 1);
  url = single.Url("/");
  estimator.EstimateCount(url.data(), -1);
  EXPECT_EQ(estimator.GetShapeCount(), 1);
  EXPECT_EQ(estimator.GetListingCount(), 0);
  EXPECT_EQ(estimator.GetPhase(), ORV_ESTIMATE_IDLE);
  // Out of range reads nothing and leaves what it was given.
  OrvEstimateShape shape{};
  shape.estimate = 77;
  OrvEstimateListing listing{};
  listing.lastPage = 77;
  OrvEstimateProbe probe{};
  probe.page = 77;
  EXPECT_EQ(estimator.FetchShape(1, shape) + estimator.FetchShape(-1, shape), 0);
  EXPECT_EQ(estimator.FetchListing(0, listing) + estimator.FetchProbe(0, 0, probe), 0);
  EXPECT_EQ(std::tuple(shape.estimate, listing.lastPage, probe.page), std::tuple(77, 77L, 77L));
}

}  // namespace
