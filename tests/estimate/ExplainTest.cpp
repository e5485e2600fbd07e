// What an estimate is made of, read after EstimateCount on sample-site
// profiles whose every page is known.

#include <gtest/gtest.h>

#include <algorithm>

#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "support/SampleSite.h"

namespace {

TEST(Explain, ShapesAddUpAndListingsShowTheirProbes) {
  struct Case {
    const char* profile;
    std::vector<int> kinds;  // of all shapes, sorted
    long lastPage;           // of the one listing; 0: no listing
    const char* probes;      // page outcome last-number HTTP-status; ...
                             // (outcome 0: a pager, 3: no 2xx response)
  };
  const int L = ORV_PAGE_LISTING;
  const Case cases[] = {
      {"single", {ORV_PAGE_PLAIN}, 0, ""},
      {"shapes",
       {ORV_PAGE_UNREAD, ORV_PAGE_CONTENT, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN},
       0,
       ""},
      // Above 5 the listing answers 404; page 4 links up to 5 and page 5 up to 4.
      {"fail5",
       {L, ORV_PAGE_PLAIN},
       5,
       "100 3 -1 404; 50 3 -1 404; 25 3 -1 404; 13 3 -1 404; 7 3 -1 404; 4 0 5 200; 5 0 4 200; "},
      // Page 100 shows page 13, whose pager ends at 12.
      {"last13", {L, ORV_PAGE_PLAIN}, 13, "100 0 12 200; "},
  };
  OrvHttpLimits::Reset();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.profile);
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    OrvWebPageCountEstimate estimator;
    std::string url = site.Url("/");
    long result = estimator.EstimateCount(url.data(), -1);
    uint32_t sum = 0;
    std::vector<int> kinds;
    for (int i = 0; i < estimator.GetShapeCount(); i++) {
      OrvEstimateShape shape{};
      ASSERT_EQ(estimator.FetchShape(i, shape), 1);
      sum += uint32_t(shape.estimate) * uint32_t(shape.sightings);
      kinds.push_back(shape.kind);
      EXPECT_EQ(shape.read, shape.kind != ORV_PAGE_UNREAD);
      EXPECT_EQ(shape.listing, shape.kind == L ? 0 : -1);
    }
    EXPECT_EQ(long(int32_t(sum)), result);
    std::sort(kinds.begin(), kinds.end());
    EXPECT_EQ(kinds, c.kinds);
    ASSERT_EQ(estimator.GetListingCount(), c.lastPage ? 1 : 0);
    OrvEstimateListing listing{};
    OrvEstimateShape shape{};
    if (!c.lastPage) continue;
    ASSERT_EQ(estimator.FetchListing(0, listing), 1);
    EXPECT_EQ(std::string(listing.pageParam.buf, size_t(listing.pageParam.len)) + " " +
                  std::to_string(listing.step) + " " + std::to_string(listing.offset) + " " +
                  std::to_string(listing.lastPage),
              "page 1 1 " + std::to_string(c.lastPage));
    estimator.FetchShape(listing.shape, shape);
    EXPECT_EQ(shape.estimate, listing.lastPage * listing.urlCount);
    std::string probes;
    for (int i = 0; i < listing.probeCount; i++) {
      OrvEstimateProbe p{};
      ASSERT_EQ(estimator.FetchProbe(0, i, p), 1);
      for (long n : {p.page, long(p.outcome), p.lastNumber, long(p.httpStatus)})
        probes += std::to_string(n) + (n == p.httpStatus ? "; " : " ");
    }
    EXPECT_EQ(probes, c.probes);
    // One request per shape, and one per probe.
    EXPECT_EQ(site.LogLines().size(), size_t(estimator.GetShapeCount() + listing.probeCount));
  }
}

// A progress display asks the estimator what it is doing as each request
// starts; the next run replaces what the last one explained.
TEST(Explain, PhaseFollowsTheRunAndTheNextRunReplacesTheLast) {
  SampleSite fail5({"--profile", "fail5"}), single({"--profile", "single"});
  ASSERT_TRUE(fail5.Ok() && single.Ok());
  struct Seen {
    OrvWebPageCountEstimate estimator;
    std::string phases;  // at the start of each request
  } seen;
  OrvHttpLimits::Reset();
  OrvHttpLimits::SetProgress(
      [](const OrvHttpProgress& p, void* context) {
        auto* s = static_cast<Seen*>(context);
        if (size_t(p.requests) > s->phases.size()) s->phases += char('0' + s->estimator.GetPhase());
      },
      &seen);
  std::string url = fail5.Url("/");
  seen.estimator.EstimateCount(url.data(), -1);
  OrvHttpLimits::Reset();
  // The entry and the listing's first page, then its seven probes.
  EXPECT_EQ(seen.phases, "112222222");
  ASSERT_EQ(seen.estimator.GetListingCount(), 1);
  url = single.Url("/");
  seen.estimator.EstimateCount(url.data(), -1);
  EXPECT_EQ(seen.estimator.GetShapeCount() + seen.estimator.GetListingCount(), 1);
  EXPECT_EQ(seen.estimator.GetPhase(), ORV_ESTIMATE_IDLE);
  // Out of range reads nothing and leaves what it was given.
  OrvEstimateShape shape{};
  OrvEstimateListing listing{};
  OrvEstimateProbe probe{};
  shape.estimate = listing.lastPage = probe.page = 77;
  EXPECT_EQ(seen.estimator.FetchShape(1, shape) + seen.estimator.FetchShape(-1, shape), 0);
  EXPECT_EQ(seen.estimator.FetchListing(0, listing) + seen.estimator.FetchProbe(0, 0, probe), 0);
  EXPECT_EQ(shape.estimate + listing.lastPage + probe.page, 3 * 77);
}

}  // namespace
