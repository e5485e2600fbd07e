// Long text, distinct URLs and the estimate of a page without a pager.

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "HarvestSummary.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "support/ItemTree.h"

namespace {

std::string Run(int nonBlank, const std::string& padding = "") {
  return "\"" + padding + std::string(size_t(nonBlank), 'x') + padding + "\"";
}

struct TextCase {
  const char* name;
  std::string tree;
  const char* kept;  // depth = runs / non-blank bytes, after pruning
};

const TextCase kTextCases[] = {
    {"MeanOfExactlySeventyKeeps", "div\n  " + Run(71) + "\n  " + Run(69) + "\n", "2=2/140"},
    {"MeanJustBelowSeventyDrops", "div\n  " + Run(70) + "\n  " + Run(69) + "\n", ""},
    {"ASingleLongRunDrops", "div\n  " + Run(5000) + "\n", ""},
    {"ThreeRunsOfSeventy", "div\n  " + Run(70) + "\n  " + Run(70) + "\n  " + Run(70) + "\n",
     "2=3/210"},
    {"BlanksDoNotCount", "div\n  " + Run(70, " \\n\\t ") + "\n  " + Run(69, "  ") + "\n", ""},
    {"CarriageReturnsCount", "div\n  " + Run(70, "\\r") + "\n  " + Run(69) + "\n", "2=2/141"},
    {"RunsMayStandInDifferentElements", "div\n  " + Run(100) + "\np\n  " + Run(40) + "\n",
     "2=2/140"},
    {"OnlyTheLongDepthStays",
     "div\n  " + Run(100) + "\n  " + Run(100) + "\n  p\n    " + Run(10) + "\n    " + Run(10) + "\n",
     "2=2/200"},
    {"LinkTitlesAreNoText",
     "div\n  a href=/x?i=1\n    " + Run(300) + "\n  a href=/x?i=2\n    " + Run(300) + "\n", ""},
};

class LongText : public testing::TestWithParam<TextCase> {};

TEST_P(LongText, KeepsDepthsWithTwoRunsOfLongMean) {
  const TextCase& c = GetParam();
  ItemTree tree(c.tree);
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  estimator.AnalysePage();
  EXPECT_EQ(SummariseText(estimator), c.kept);
  EXPECT_EQ(estimator.pageEstimate, 1);
}

INSTANTIATE_TEST_SUITE_P(Pages, LongText, testing::ValuesIn(kTextCases),
                         [](const testing::TestParamInfo<TextCase>& info) {
                           return std::string(info.param.name);
                         });

std::map<std::string, std::string> PageUrls(OrvWebPageCountEstimateImpl& e) {
  std::map<std::string, std::string> out;
  for (uint32_t i = 0; i < e.pageUrls.count; i++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    OrvString* value = *e.pageUrls.GetAt(i, &key, &keyLen);
    out[std::string(key, keyLen)] = std::string(value->buf, value->len);
  }
  return out;
}

TEST(PageUrls, DistinctCrawlableUrlsWithTheirParameterNames) {
  ItemTree tree(R"(
    div
      a href=/p?id=1
        "1"
      a href=/p?id=2
      a href=/p?id=1
      a href=/q
      a href=/p?x=1&id=2
      a href=http://elsewhere.test/p?id=3
      a href=/r.php?id=4
  )");
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  for (int page = 0; page < 2; page++) {
    OrvHarvestWalk walk;
    walk.harvest = &estimator;
    walk.HarvestPage(tree.root(), 1);
    estimator.AnalysePage();
    std::map<std::string, std::string> expected = {
        {"http://www.site.test/p?id=1", "id"},
        {"http://www.site.test/p?id=2", "id"},
        {"http://www.site.test/q", "[No Query String]"},
        {"http://www.site.test/p?id=2&x=1", "id,x"},
    };
    EXPECT_EQ(PageUrls(estimator), expected) << "page " << page;
    EXPECT_EQ(estimator.pageEstimate, 1);
    estimator.ResetPage();
    EXPECT_EQ(estimator.pageUrls.count, 0u);
    EXPECT_EQ(estimator.links.map.count, 0u);
    EXPECT_EQ(estimator.numbers.map.count, 0u);
  }
}

TEST(PageUrls, PagerWithoutChangedParameterMakesNoListing) {
  // Rising numbers whose targets differ in the path alone: no template, so no
  // probe is made and the page counts once.
  ItemTree tree(R"(
    div
      a href=/1.html
        "1"
      a href=/2.html
        "2"
      a href=/3.html
        "3"
  )");
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  estimator.AnalysePage();
  EXPECT_EQ(estimator.runs.map.count, 1u);
  EXPECT_EQ(estimator.pageUrls.count, 3u);
  EXPECT_EQ(estimator.pageEstimate, 1);
}

}  // namespace
