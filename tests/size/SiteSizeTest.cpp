#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvSiteSize.h"
#include "size/OrvRecapture.h"
#include "size/OrvSizePager.h"
#include "size/OrvUrlShape.h"
#include "support/Cases.h"
#include "support/SampleSite.h"

namespace {

std::vector<std::vector<std::string>> SizeRows(const std::string& name, size_t width) {
  return ReadCases(ORV_CASES_DIR "/size/" + name, width, true);
}

TEST(SizeShapes, LocalPartShapeAndPageLike) {
  for (const auto& row : SizeRows("shapes.tsv", 4)) {
    OrvSizeText local = OrvLocalPart(row[0]);
    EXPECT_EQ(std::string(local.data(), local.size()), row[1]) << row[0];
    if (local.empty()) continue;
    OrvSizeText shape = OrvShapeOf(local);
    EXPECT_EQ(std::string(shape.data(), shape.size()), row[2]) << row[0];
    EXPECT_EQ(OrvIsPageLike(local), row[3] == "1") << row[0];
  }
}

TEST(SizePagers, ReadFromThePageLinks) {
  for (const auto& row : SizeRows("pagers.tsv", 6)) {
    OrvSizeList<OrvSizeLink> links;
    OrvSizeList<OrvSizeText> locals;
    std::istringstream in(row[1]);
    for (std::string item; in >> item;) {
      size_t bar = item.find('|');
      OrvSizeLink link;
      link.url = OrvSizeText("http://h.test") + item.substr(0, bar).c_str();
      link.label = item.substr(bar + 1).c_str();
      link.next = OrvIsNextLabel(link.label.data(), long(link.label.size()));
      locals.push_back(OrvLocalPart(link.url));
      links.push_back(link);
    }
    OrvSizePager pager;
    bool found = OrvFindPager(links, locals, row[0], pager);
    ASSERT_EQ(found, row[2] != "-") << row[1];
    if (!found) continue;
    EXPECT_EQ(std::string(pager.pattern.data(), pager.pattern.size()), row[2]) << row[1];
    EXPECT_EQ(pager.step, std::stoll(row[3])) << row[1];
    EXPECT_EQ(pager.offset, std::stoll(row[4])) << row[1];
    EXPECT_EQ(pager.maxPage, std::stoll(row[5])) << row[1];
  }
}

TEST(SizeRecapture, ChapmanHoldsWhatWasSeen) {
  struct Case {
    int64_t n1, n2, both;
    double estimate;
  } cases[] = {
      {100, 100, 100, 100},  // the same things twice: all there is
      {50, 40, 20, 98},      // (51 * 41 / 21) - 1
      {10, 10, 0, 50},       // samples that never meet: capped at 2.5 times the 20 seen
      {0, 30, 0, 30},        // one sample alone: what it saw
  };
  for (const Case& c : cases) {
    OrvRecapture r = OrvChapman(c.n1, c.n2, c.both);
    EXPECT_NEAR(r.estimate, c.estimate, 0.6) << c.n1 << " " << c.n2 << " " << c.both;
    EXPECT_LE(r.low, r.estimate);
    EXPECT_GE(r.high, r.estimate);
    EXPECT_GE(r.low, double(c.n1 + c.n2 - c.both));
  }
}

// Each profile served alone, sized with the default budget: the figure comes
// from the expected source, near the true count, inside its own range.
TEST(SiteSize, SampleProfilesLandInTheirRange) {
  for (const auto& row : SizeRows("crawl-sites.tsv", 3)) {
    SampleSite site({"--profile", row[0]});
    ASSERT_TRUE(site.Ok()) << site.Error();
    OrvHttpLimits::Reset();
    OrvHttpSettings settings;
    settings.maxRequests = 60;
    OrvHttpLimits::Set(settings);
    OrvSiteSize size;
    std::string url = site.Url();
    int64_t pages = size.Measure(url.data(), long(url.size()), 60);
    double truth = double(site.TruePages()), factor = std::stod(row[2]);
    EXPECT_STREQ(OrvSiteSize::SourceName(size.Source()), row[1].c_str()) << row[0];
    EXPECT_LE(size.Low(), site.TruePages()) << row[0];
    EXPECT_GE(size.High(), site.TruePages()) << row[0];
    EXPECT_LE(double(pages), truth * factor + 0.5) << row[0];
    EXPECT_GE(double(pages), truth / factor - 0.5) << row[0];
    EXPECT_LE(size.Requests(), 60) << row[0];
    EXPECT_EQ(size_t(size.Requests()), site.LogLines().size()) << row[0];
  }
  OrvHttpLimits::Reset();
}

}  // namespace
