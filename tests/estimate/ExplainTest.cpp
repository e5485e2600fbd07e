// What an estimate is made of, read after EstimateCount on sample-site
// profiles whose every page is known.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "support/SampleSite.h"

namespace {

struct Probe {
  long page;
  int outcome;
  long lastNumber;
};

struct ExplainCase {
  const char* profile;
  std::vector<int> kinds;     // of all shapes, sorted
  std::vector<Probe> probes;  // of the one listing; empty: no listing
  long lastPage;
};

const ExplainCase kCases[] = {
    {"single", {ORV_PAGE_PLAIN}, {}, 0},
    {"shapes",
     {ORV_PAGE_UNREAD, ORV_PAGE_CONTENT, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN, ORV_PAGE_PLAIN},
     {},
     0},
    // Above 5 the listing answers 404; page 4 links up to 5 and page 5 up to 4.
    {"fail5",
     {ORV_PAGE_LISTING, ORV_PAGE_PLAIN},
     {{100, ORV_PROBE_UNFETCHED, -1},
      {50, ORV_PROBE_UNFETCHED, -1},
      {25, ORV_PROBE_UNFETCHED, -1},
      {13, ORV_PROBE_UNFETCHED, -1},
      {7, ORV_PROBE_UNFETCHED, -1},
      {4, ORV_PROBE_PAGER, 5},
      {5, ORV_PROBE_PAGER, 4}},
     5},
    // Page 100 shows page 13, whose pager ends at 12.
    {"last13", {ORV_PAGE_LISTING, ORV_PAGE_PLAIN}, {{100, ORV_PROBE_PAGER, 12}}, 13},
};

long Estimate(OrvWebPageCountEstimate& estimator, const std::string& url) {
  std::string text = url;
  return estimator.EstimateCount(text.data(), long(text.size()));
}

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, size_t(s.len)) : ""; }

TEST(Explain, ShapesAddUpAndListingsShowTheirProbes) {
  for (const ExplainCase& c : kCases) {
    SCOPED_TRACE(c.profile);
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    OrvWebPageCountEstimate estimator;
    long result = Estimate(estimator, site.Url("/"));

    std::set<std::string> requested;
    for (const std::string& target : site.LogLines()) requested.insert(site.Url(target));
    uint32_t sum = 0;
    std::vector<int> kinds;
    int listingShape = -1;
    for (int i = 0; i < estimator.GetShapeCount(); i++) {
      OrvEstimateShape shape{};
      ASSERT_EQ(estimator.FetchShape(i, shape), 1);
      sum += uint32_t(shape.estimate) * uint32_t(shape.sightings);
      kinds.push_back(shape.kind);
      EXPECT_EQ(shape.read, shape.kind != ORV_PAGE_UNREAD);
      EXPECT_EQ(requested.count(Text(shape.url)), 1u) << Text(shape.url);
      if (shape.listing >= 0) listingShape = i;
    }
    EXPECT_EQ(long(int32_t(sum)), result);
    std::sort(kinds.begin(), kinds.end());
    EXPECT_EQ(kinds, c.kinds);

    // One request per shape, and one per probe.
    ASSERT_EQ(estimator.GetListingCount(), c.probes.empty() ? 0 : 1);
    size_t requests = size_t(estimator.GetShapeCount());
    if (!c.probes.empty()) {
      OrvEstimateListing listing{};
      ASSERT_EQ(estimator.FetchListing(0, listing), 1);
      EXPECT_EQ(listing.shape, listingShape);
      EXPECT_EQ(Text(listing.pageParam), "page");
      EXPECT_EQ(listing.step, 1);
      EXPECT_EQ(listing.offset, 1);
      EXPECT_EQ(listing.lastPage, c.lastPage);
      OrvEstimateShape shape{};
      estimator.FetchShape(listing.shape, shape);
      EXPECT_EQ(shape.estimate, listing.lastPage * listing.urlCount);
      ASSERT_EQ(listing.probeCount, int(c.probes.size()));
      for (int i = 0; i < listing.probeCount; i++) {
        OrvEstimateProbe probe{};
        ASSERT_EQ(estimator.FetchProbe(0, i, probe), 1);
        EXPECT_EQ(probe.page, c.probes[i].page) << i;
        EXPECT_EQ(probe.outcome, c.probes[i].outcome) << i;
        EXPECT_EQ(probe.httpStatus, c.probes[i].outcome == ORV_PROBE_PAGER ? 200 : 404) << i;
        EXPECT_EQ(probe.lastNumber, c.probes[i].lastNumber) << i;
      }
      requests += c.probes.size();
    }
    EXPECT_EQ(site.LogLines().size(), requests);
  }
}

TEST(Explain, NextRunReplacesTheLastAndOutOfRangeReadsNothing) {
  SampleSite fail5({"--profile", "fail5"});
  SampleSite single({"--profile", "single"});
  ASSERT_TRUE(fail5.Ok() && single.Ok());
  OrvWebPageCountEstimate estimator;
  EXPECT_EQ(estimator.GetShapeCount(), 0);
  Estimate(estimator, fail5.Url("/"));
  ASSERT_EQ(estimator.GetListingCount(), 1);
  Estimate(estimator, single.Url("/"));
  EXPECT_EQ(estimator.GetShapeCount(), 1);
  EXPECT_EQ(estimator.GetListingCount(), 0);
  EXPECT_EQ(estimator.GetPhase(), ORV_ESTIMATE_IDLE);

  OrvEstimateShape shape{};
  shape.estimate = 77;
  OrvEstimateListing listing{};
  listing.lastPage = 77;
  OrvEstimateProbe probe{};
  probe.page = 77;
  EXPECT_EQ(estimator.FetchShape(1, shape), 0);
  EXPECT_EQ(estimator.FetchShape(-1, shape), 0);
  EXPECT_EQ(estimator.FetchListing(0, listing), 0);
  EXPECT_EQ(estimator.FetchProbe(0, 0, probe), 0);
  EXPECT_EQ(shape.estimate, 77);
  EXPECT_EQ(listing.lastPage, 77);
  EXPECT_EQ(probe.page, 77);
}

// A progress display asks the estimator what it is doing as each request starts.
TEST(Explain, PhaseIsProbingExactlyDuringTheLastPageSearch) {
  SampleSite site({"--profile", "fail5"});
  ASSERT_TRUE(site.Ok()) << site.Error();
  struct Seen {
    OrvWebPageCountEstimate estimator;
    std::vector<std::pair<std::string, int>> starts;
  } seen;
  OrvHttpLimits::SetProgress(
      [](const OrvHttpProgress& p, void* context) {
        auto* s = static_cast<Seen*>(context);
        if (size_t(p.requests) > s->starts.size())
          s->starts.push_back({p.url, s->estimator.GetPhase()});
      },
      &seen);
  OrvHttpLimits::ResetCounters();
  Estimate(seen.estimator, site.Url("/"));
  OrvHttpLimits::SetProgress(nullptr, nullptr);
  ASSERT_EQ(seen.starts.size(), 9u);
  for (const auto& [url, phase] : seen.starts) {
    bool crawled = url == site.Url("/") || url == site.Url("/list?page=1");
    EXPECT_EQ(phase, crawled ? ORV_ESTIMATE_CRAWLING : ORV_ESTIMATE_PROBING) << url;
  }
}

}  // namespace
