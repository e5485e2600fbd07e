// Which rows of number links count as a pager, and the template read from it.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "HarvestSummary.h"
#include "estimate/OrvPageTemplate.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "support/ItemTree.h"

namespace {

// One token per number, in document order, each a link to /l?p=<10 * N>:
//   N    the link holds the number text directly
//   N.c  the link has class c
//   N~   plain text in a span, no link
//   N<   the text is wrapped in one more element inside the link
//   N>   the link is wrapped in one more element, so the text sits as deep as N<
std::string PagerTree(const std::string& tokens) {
  std::istringstream in(tokens);
  std::string out = "div\n", token;
  while (in >> token) {
    size_t digits = token.find_first_not_of("0123456789");
    std::string n = token.substr(0, digits);
    std::string rest = digits == std::string::npos ? "" : token.substr(digits);
    std::string link = "a href=/l?p=" + std::to_string(std::stoi(n) * 10);
    if (!rest.empty() && rest[0] == '.') link += " class=" + rest.substr(1);
    std::string text = "\"" + n + "\"";
    if (rest == "~")
      out += "  span\n    " + text + "\n";
    else if (rest == "<")
      out += "  " + link + "\n    b\n      " + text + "\n";
    else if (rest == ">")
      out += "  span\n    " + link + "\n      " + text + "\n";
    else
      out += "  " + link + "\n    " + text + "\n";
  }
  return out;
}

struct RunCase {
  const char* name;
  const char* pager;
  const char* runs;       // depth of the link element = numbers kept
  const char* template_;  // position of the pair : page value of the template, or ""
};

const RunCase kRunCases[] = {
    {"TwoLinksAreNoPager", "1 2", "", ""},
    {"ThreeRisingLinks", "1 2 3", "2=1,2,3", "1:20"},
    {"FallingLinks", "3 2 1", "", ""},
    {"GapsAreAllowed", "1 5 40", "2=1,5,40", "1:50"},
    {"RisingMeansByAtLeastOne", "1 1 2", "", ""},
    {"ZeroIsNoPageNumber", "0 1 2", "", ""},
    {"OtherClassValue", "1.x 2.y 3.x", "", ""},
    {"ClassOnOneLinkOnly", "1 2.x 3", "", ""},
    {"ThirdLinkOtherClass", "1.x 2.x 3.y", "", ""},
    {"ClassValuesFoldCase", "1.x 2.X 3.x", "2=1,2,3", "1:20"},
    {"ScanFromTheEndSkipsAFailingTriple", "1 2 3 1", "2=1,2,3", "1:20"},
    {"CurrentPageAsPlainText", "1 2 3~ 4 5", "2=2,4,5", "1:40"},
    {"LaterPagerAtTheSameDepthWins", "1 2 3 7 8 9", "2=7,8,9", "1:80"},
    {"LinksAtDifferentDepths", "1< 2< 3>", "", ""},
    {"WrappedTextAtOneDepth", "1< 2< 3<", "2=1,2,3", "1:20"},
    // Two text depths whose links share a depth fill one list, in the flat
    // order of the depth keys ("3" comes before "4").
    {"TwoTextDepthsOneLinkDepth", "1< 2< 3< 4 5 6", "2=4,5,6,1,2,3", "1:50"},
};

class PagerRuns : public testing::TestWithParam<RunCase> {};

TEST_P(PagerRuns, DetectsRisingRunsAndTheirTemplate) {
  const RunCase& c = GetParam();
  ItemTree tree(PagerTree(c.pager));
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(tree.root(), 1);
  estimator.DetectRuns();
  EXPECT_EQ(SummariseRuns(estimator), c.runs);

  std::string made;
  if (estimator.runs.map.count > 0) {
    OrvPageTemplate pageTemplate;
    int32_t at = BuildPageTemplate(pageTemplate, **estimator.runs.map.GetAt(0));
    if (at >= 0) {
      ASSERT_EQ(pageTemplate.paramIndex, 0);
      made = std::to_string(at) + ":" + pageTemplate.params[0].value.buf;
    }
  }
  EXPECT_EQ(made, c.template_);
}

INSTANTIATE_TEST_SUITE_P(Pagers, PagerRuns, testing::ValuesIn(kRunCases),
                         [](const testing::TestParamInfo<RunCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
