// How a page parameter follows the page number, from two pager links.

#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <string>
#include <vector>

#include "estimate/OrvPageTemplate.h"

namespace {

struct PagerLink {
  int32_t number;
  const char* target;
};

struct TemplateCase {
  const char* name;
  std::vector<PagerLink> links;
  int32_t position;  // what BuildPageTemplate gives
  int32_t paramIndex;
  int32_t step;
  int32_t offset;
  const char* page7;  // MakePageUrl for page 7, rebuilt
};

const TemplateCase kTemplateCases[] = {
    {"OffsetsOfTwenty",
     {{2, "http://h.test/l?start=20"}, {3, "http://h.test/l?start=40"}},
     1,
     0,
     20,
     0,
     "http://h.test/l?start=120"},
    {"PageNumbers",
     {{2, "http://h.test/l?page=2"}, {3, "http://h.test/l?page=3"}},
     1,
     0,
     1,
     1,
     "http://h.test/l?page=7"},
    {"StepTruncatesTowardZero",
     {{3, "http://h.test/l?page=2"}, {5, "http://h.test/l?page=3"}},
     1,
     0,
     0,
     3,
     "http://h.test/l?page=3"},
    {"ChangedParameterFoundByPosition",
     {{1, "http://h.test/l?cat=7&page=1"}, {2, "http://h.test/l?cat=7&page=2"}},
     1,
     1,
     1,
     1,
     "http://h.test/l?cat=7&page=7"},
    {"ParameterOnOneSideOnlyShiftsTheRest",
     {{1, "http://h.test/l?a=1&page=1"}, {2, "http://h.test/l?page=2"}},
     -1,
     -1,
     0,
     0,
     ""},
    {"PathAloneDiffers",
     {{1, "http://h.test/p1?x=1"}, {2, "http://h.test/p2?x=1"}},
     -1,
     -1,
     0,
     0,
     ""},
    {"ValuesDifferingInCaseOnlyAreEqual",
     {{1, "http://h.test/l?p=a"}, {2, "http://h.test/l?p=A"}},
     -1,
     -1,
     0,
     0,
     ""},
    {"NamesDifferingInCaseOnlyAreEqual",
     {{1, "http://h.test/l?Page=1"}, {2, "http://h.test/l?page=2"}},
     1,
     0,
     1,
     1,
     "http://h.test/l?page=7"},
    {"ValuesThatAreNoNumbersReadAsZero",
     {{1, "http://h.test/l?p=x"}, {2, "http://h.test/l?p=y"}},
     1,
     0,
     0,
     0,
     "http://h.test/l?p=0"},
    {"EqualNumbersGiveNoTemplateButTheNextPairDoes",
     {{2, "http://h.test/l?p=2"}, {2, "http://h.test/l?p=3"}, {3, "http://h.test/l?p=4"}},
     2,
     0,
     1,
     2,
     "http://h.test/l?p=8"},
    {"OnlyEqualNumbers",
     {{2, "http://h.test/l?p=2"}, {2, "http://h.test/l?p=3"}},
     -1,
     -1,
     0,
     0,
     ""},
    {"OneLinkIsTooFew", {{2, "http://h.test/l?p=2"}}, -1, -1, 0, 0, ""},
    {"ValueDifferenceWrapsAround",
     {{1, "http://h.test/l?p=2147483647"}, {2, "http://h.test/l?p=-2147483648"}},
     1,
     0,
     1,
     INT_MAX,
     "http://h.test/l?p=-2147483643"},
    {"LowestValueOverMinusOneWrapsAround",
     {{3, "http://h.test/l?p=0"}, {2, "http://h.test/l?p=-2147483648"}},
     1,
     0,
     INT_MIN,
     0,
     "http://h.test/l?p=0"},
};

class PageTemplate : public testing::TestWithParam<TemplateCase> {};

TEST_P(PageTemplate, FollowsThePageParameter) {
  const TemplateCase& c = GetParam();
  std::deque<OrvNumberLink> records;
  OrvPtrList list;
  for (const PagerLink& l : c.links) {
    OrvNumberLink& n = records.emplace_back();
    n.number = l.number;
    n.link.url = l.target;
    n.link.Parse(1);
    list.Add(&n);
  }
  OrvPageTemplate pageTemplate;
  EXPECT_EQ(BuildPageTemplate(pageTemplate, list), c.position);
  EXPECT_EQ(pageTemplate.paramIndex, c.paramIndex);
  if (c.position < 0) return;
  EXPECT_EQ(pageTemplate.step, c.step);
  EXPECT_EQ(pageTemplate.offset, c.offset);
  // The template is a copy of the second link of the pair.
  const OrvNumberLink& second = records[size_t(c.position)];
  EXPECT_EQ(std::string(pageTemplate.url.buf), std::string(second.link.url.buf));

  OrvLinkRecord out;
  MakePageUrl(out, 7, pageTemplate);
  out.Rebuild();
  EXPECT_EQ(std::string(out.url.buf), c.page7);
  // The template itself keeps its value.
  EXPECT_EQ(std::string(pageTemplate.params[c.paramIndex].value.buf),
            std::string(second.link.params[c.paramIndex].value.buf));
}

INSTANTIATE_TEST_SUITE_P(Pairs, PageTemplate, testing::ValuesIn(kTemplateCases),
                         [](const testing::TestParamInfo<TemplateCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
