// What the walk of a crawled page gathers, on hand-built trees.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HarvestSummary.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "support/ItemTree.h"

namespace {

struct HarvestCase {
  const char* name;
  const char* tree;
  const char* links;    // parameter-name key = URLs in list order
  const char* numbers;  // depth of the number text = numbers in list order
  const char* text;     // depth = runs / non-blank bytes
};

const HarvestCase kHarvestCases[] = {
    {"NumberLinkGivesLinkAndNumber",
     R"(
      div
        a href=/list?page=2
          "2"
     )",
     "page=http://www.site.test/list?page=2", "3=2", ""},
    {"NumberKeyIsDepthOfTextNotOfLink",
     R"(
      div
        a href=/l?p=1
          "1"
        a href=/l?p=2
          b
            "2"
     )",
     "p=http://www.site.test/l?p=1 | http://www.site.test/l?p=2", "3=1; 4=2", ""},
    {"BlanksAndCommasInLinkAreANumberOfZero",
     R"(
      a href=/x?q=1
        " , "
     )",
     "q=http://www.site.test/x?q=1", "2=0", ""},
    {"DigitsWithBlanksAndCommasAreOneNumber",
     R"(
      a href=/x?q=1
        " 1,024 "
     )",
     "q=http://www.site.test/x?q=1", "2=1024", ""},
    {"OtherTextInLinkIsNeitherNumberNorText",
     R"(
      a href=/x?q=1
        "page 2"
     )",
     "q=http://www.site.test/x?q=1", "", ""},
    {"BlankTextOutsideLinksIsNothingButCarriageReturnCounts",
     R"(
      div
        " \n\t "
      p
        " \r "
     )",
     "", "", "2=1/1"},
    {"NumberTextOutsideLinksIsText",
     R"(
      div
        "12"
        "3 4"
     )",
     "", "", "2=2/4"},
    {"TextBelowNoTextKindsCountsNowhere",
     R"(
      script
        "var x = 1;"
      a href=/y
        title
          "7"
      div
        style
          "p {}"
     )",
     "[No Query String]=http://www.site.test/y", "", ""},
    {"SameTargetTwiceIsListedOnceButNumbersTwice",
     R"(
      a href=/p?id=1
        "1"
      a href=/p?id=1
        "1"
     )",
     "id=http://www.site.test/p?id=1", "2=1,1", ""},
    {"ListedExtensionsPassAnyCaseOthersFail",
     R"(
      a href=/a.HTML
      a href=/b.php
      a href=/c
      a href=/d.action
      a href=/e.shtml
      a href=/f.Jsp
     )",
     "[No Query String]=http://www.site.test/a.HTML | http://www.site.test/c | "
     "http://www.site.test/d.action | http://www.site.test/f.Jsp",
     "", ""},
    {"HostMustHoldTheDomain",
     R"(
      a href=http://other.test/x
      a href=http://site.test.other.test/x
      a href=javascript:void(0)
      a href=//JavaScript/x
      a href=list.asp?page=2
      a href=https://news.site.test/y?b=1&a=2
     )",
     "[No Query String]=http://site.test.other.test/x; a,b=https://news.site.test/y?b=1&a=2", "",
     ""},
    {"EmptyTargetIsTheSiteRoot",
     R"(
      a href
     )",
     "[No Query String]=http://www.site.test/", "", ""},
    {"LinkWithoutTargetAddsNothingButItsChildrenAreWalked",
     R"(
      a title=x
        "5"
        a href=/in?k=1
          "6"
     )",
     "k=http://www.site.test/in?k=1", "3=6", ""},
    {"NumberTakesTheNearestLinkAboveIt",
     R"(
      a href=/outer?o=1
        span
          a href=/inner?i=1
            "4"
     )",
     "i=http://www.site.test/inner?i=1; o=http://www.site.test/outer?o=1", "4=4", ""},
    {"DocumentOrderParentsFirst",
     R"(
      a href=/o?k=1
        a href=/o?k=2
      a href=/o?k=3
      div
        a href=/o?k=4
     )",
     "k=http://www.site.test/o?k=1 | http://www.site.test/o?k=2 | http://www.site.test/o?k=3 | "
     "http://www.site.test/o?k=4",
     "", ""},
    {"TopLevelTextIsNotVisible",
     R"(
      "a top-level run"
     )",
     "", "", ""},
};

class Harvest : public testing::TestWithParam<HarvestCase> {};

TEST_P(Harvest, GathersLinksNumbersAndText) {
  const HarvestCase& c = GetParam();
  ItemTree tree(c.tree);
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/start", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.go = 1;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  EXPECT_EQ(SummariseLinks(estimator), c.links);
  EXPECT_EQ(SummariseNumbers(estimator), c.numbers);
  EXPECT_EQ(SummariseText(estimator), c.text);
  EXPECT_EQ(walk.go, 1);

  // The probe walk gathers the same links and numbers and no text.
  estimator.ResetPage();
  OrvHarvestWalk probe;
  probe.go = 1;
  probe.harvest = &estimator;
  probe.HarvestLinks(tree.root(), 1);
  EXPECT_EQ(SummariseLinks(estimator), c.links);
  EXPECT_EQ(SummariseNumbers(estimator), c.numbers);
  EXPECT_EQ(SummariseText(estimator), "");
}

INSTANTIATE_TEST_SUITE_P(Trees, Harvest, testing::ValuesIn(kHarvestCases),
                         [](const testing::TestParamInfo<HarvestCase>& info) {
                           return std::string(info.param.name);
                         });

TEST(HarvestEdges, RelativeNumberLinkHasNoParameters) {
  ItemTree tree(R"(
    a href=list.asp?page=2
      "2"
  )");
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  ASSERT_EQ(estimator.numbers.map.count, 1u);
  const OrvPtrList* list = *estimator.numbers.map.GetAt(0);
  ASSERT_EQ(list->count, 1);
  const OrvNumberLink* n = estimator.numbers.At(list, 0);
  EXPECT_EQ(n->link.paramCount, 0);
  EXPECT_EQ(n->link.item, tree[0]);
  EXPECT_EQ(n->link.depth, 1);
  EXPECT_EQ(n->textNode, tree[1]);
  EXPECT_EQ(n->textDepth, 2);
  EXPECT_EQ(estimator.links.map.count, 0u);
}

TEST(HarvestEdges, StoppedEstimatorGathersNothing) {
  ItemTree tree(R"(
    a href=/p?id=1
      "1"
    div
      "some text that would count"
  )");
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  estimator.StopEstimating();
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  EXPECT_EQ(walk.go, 0);
  EXPECT_EQ(estimator.links.map.count, 0u);
  EXPECT_EQ(estimator.numbers.map.count, 0u);
  EXPECT_EQ(estimator.textNodes.map.count, 0u);
  // The probe walk does not look at the flag.
  OrvHarvestWalk probe;
  probe.harvest = &estimator;
  probe.HarvestLinks(tree.root(), 1);
  EXPECT_EQ(estimator.links.map.count, 1u);
  // The next page starts running again.
  estimator.ResetPage();
  EXPECT_TRUE(estimator.IsRunning());
  EXPECT_EQ(estimator.links.map.count, 0u);
}

TEST(HarvestEdges, AMillionLevelsDeepDoNotGrowTheStack) {
  ItemTree tree;
  var_item* bottom = tree.Nest(nullptr, 1000000, "div");
  var_item* link = tree.Add(bottom, "a href=/deep?d=1");
  tree.Add(link, "\"7\"");
  tree.Add(nullptr, "a href=/after?z=1");
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  EXPECT_EQ(SummariseLinks(estimator),
            "d=http://www.site.test/deep?d=1; z=http://www.site.test/after?z=1");
  EXPECT_EQ(SummariseNumbers(estimator), "1000002=7");
}

// Text far below the top and many links of one shape: neither may cost a climb
// to the top or a scan of the list per item.
TEST(HarvestEdges, DeepTextAndLongListsStayLinear) {
  constexpr int kLevels = 100000;
  ItemTree tree;
  var_item* divs = tree.Nest(nullptr, kLevels, "div");
  for (var_item* level = divs; level; level = level->parent) tree.Add(level, "\"x\"");
  var_item* links = tree.Nest(nullptr, kLevels, "a href=/p");
  std::vector<std::string> targets;
  targets.reserve(kLevels);
  for (var_item* level = links; level; level = level->parent) {
    targets.push_back("/p?id=" + std::to_string(targets.size() / 2));
    level->attr_list->value = targets.back().data();
    level->attr_list->value_len = int32_t(targets.back().size());
  }
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  EXPECT_EQ(estimator.textNodes.map.count, uint32_t(kLevels));
  ASSERT_EQ(estimator.links.map.count, 1u);
  EXPECT_EQ((*estimator.links.map.GetAt(0))->count, kLevels / 2);
}

struct TextByteCase {
  const char* text;
  long length;
  bool number;
};

TEST(HarvestEdges, NumberTextIsDigitsBlanksAndCommasOnly) {
  const TextByteCase cases[] = {
      {"", 0, true},     {"x", -1, true},    {"0123456789 ,", 12, true},
      {"12a", 3, false}, {"12a", 2, true},   {"1.5", 3, false},
      {"-3", 2, false},  {"1\t2", 3, false}, {"\n", 1, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(OrvIsNumberText(c.text, c.length), c.number) << "[" << c.text << "] " << c.length;
}

}  // namespace
