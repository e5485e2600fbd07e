// What the walk of a page gathers and what the analysis makes of it, on
// hand-built trees.

#include <gtest/gtest.h>

#include <deque>
#include <fstream>
#include <sstream>

#include "estimate/EstimateSupport.h"
#include "support/Cases.h"
#include "support/ItemTree.h"

namespace {

struct Walked {
  OrvWebPageCountEstimateImpl estimator;
  std::map<std::string, std::string> found;  // links, numbers, text, runs, template, kept, urls

  explicit Walked(var_item* root) {
    OrvString entry("http://www.site.test/start", -1);
    estimator.SetEntryUrl(entry);
    OrvHarvestWalk walk;
    walk.harvest = &estimator;
    walk.HarvestPage(root, 1);
    found["links"] = Summarise(estimator.links);
    found["numbers"] = Summarise(estimator.numbers);
    found["text"] = SummariseText(estimator);
    estimator.DetectRuns();
    found["runs"] = Summarise(estimator.runs);
    if (estimator.runs.map.count > 0) {
      OrvPageTemplate made;
      int32_t at = BuildPageTemplate(made, **estimator.runs.map.GetAt(0));
      if (at >= 0) found["template"] = std::to_string(at) + ":" + made.params[0].value.buf;
    }
    estimator.PruneTextDepths();
    found["kept"] = SummariseText(estimator);
    estimator.CollectPageUrls();
    found["urls"] = Summarise(estimator.pageUrls, [](const std::string&, OrvString* names) {
      return std::string(names->buf, size_t(names->len));
    });
    estimator.ResetPage();
  }
};

TEST(Page, WalksAndAnalysesGiveWhatTheCasesSay) {
  std::ifstream in(ORV_CASES_DIR "/estimate/pages.txt");
  std::string line, name, tree;
  std::map<std::string, std::string> expected;
  int cases = 0;
  auto check = [&] {
    if (name.empty()) return;
    SCOPED_TRACE(name);
    ++cases;
    ItemTree items(tree);
    Walked walked(items.root());
    for (const auto& [key, value] : expected) EXPECT_EQ(walked.found[key], value) << key;
    // The probe walk gathers the same links and numbers and no text.
    OrvHarvestWalk probe;
    probe.harvest = &walked.estimator;
    probe.HarvestLinks(items.root(), 1);
    EXPECT_EQ(Summarise(walked.estimator.links), walked.found["links"]);
    EXPECT_EQ(Summarise(walked.estimator.numbers), walked.found["numbers"]);
    EXPECT_EQ(SummariseText(walked.estimator), "");
  };
  while (std::getline(in, line)) {
    size_t colon = line.find(':');
    if (line.rfind("== ", 0) == 0) {
      check();
      name = line.substr(3), tree.clear(), expected.clear();
    } else if (colon != std::string::npos && line.find_first_of(" \"=") > colon) {
      expected[line.substr(0, colon)] = line.substr(std::min(colon + 2, line.size()));
    } else if (!line.empty() && line[0] != '#') {
      tree += line + "\n";
    }
  }
  check();
  EXPECT_GT(cases, 40);
}

TEST(Page, TemplatesFollowThePageParameter) {
  const auto rows = ReadCases(ORV_CASES_DIR "/estimate/templates.tsv", 7);
  for (const auto& f : rows) {
    SCOPED_TRACE(f[0]);
    std::deque<OrvNumberLink> records;
    OrvPtrList list;
    std::stringstream links(f[1]);
    for (std::string number, url; links >> number >> url;) {
      OrvNumberLink& n = records.emplace_back();
      n.number = std::stoi(number);
      n.link.url = url.substr(0, url.find(',')).c_str();
      n.link.Parse(1);
      list.Add(&n);
    }
    OrvPageTemplate made;
    int32_t at = BuildPageTemplate(made, list);
    EXPECT_EQ(at, std::stoi(f[2]));
    EXPECT_EQ(made.paramIndex, std::stoi(f[3]));
    if (at < 0) continue;
    EXPECT_EQ(std::to_string(made.step) + " " + std::to_string(made.offset), f[4] + " " + f[5]);
    // The template is a copy of the second link of the pair, and keeps its value.
    const OrvLinkRecord& second = records[size_t(at)].link;
    EXPECT_STREQ(made.url.buf, second.url.buf);
    OrvLinkRecord page7;
    MakePageUrl(page7, 7, made);
    page7.Rebuild();
    EXPECT_EQ(page7.url.buf, f[6]);
    EXPECT_STREQ(made.params[made.paramIndex].value.buf, second.params[made.paramIndex].value.buf);
  }
  EXPECT_GT(rows.size(), 10u);
}

OrvWebPageCountEstimateImpl& Harvest(OrvWebPageCountEstimateImpl& estimator, var_item* root) {
  OrvString entry("http://www.site.test/", -1);
  estimator.SetEntryUrl(entry);
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  walk.HarvestPage(root, 1);
  return estimator;
}

// A million levels must not grow the stack.
TEST(Page, AMillionLevelsDeep) {
  ItemTree deep;
  var_item* link = deep.Add(deep.Nest(nullptr, 1000000, "div"), "a href=/deep?d=1");
  deep.Add(link, "\"7\"");
  deep.Add(nullptr, "a href=/after?z=1");
  OrvWebPageCountEstimateImpl one;
  Harvest(one, deep.root());
  EXPECT_EQ(Summarise(one.links),
            "d=http://www.site.test/deep?d=1; z=http://www.site.test/after?z=1");
  EXPECT_EQ(Summarise(one.numbers), "1000002=7");
}

}  // namespace
