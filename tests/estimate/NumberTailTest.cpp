// The crawl keeps per depth only the number links that can still make the
// run DetectRuns picks; it must pick the very run, with the very template,
// that the whole list gives.

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "estimate/EstimateSupport.h"
#include "support/ItemTree.h"

namespace {

// The runs in map order: key, then each record's number, link element and
// target; then the template built from the first run.
std::string RunsOf(var_item* root, uint8_t allNumbers, bool wholePage) {
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/start", -1);
  estimator.SetEntryUrl(entry);
  estimator.allNumbers = allNumbers;
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  if (wholePage)
    walk.HarvestPage(root, 1);
  else
    walk.HarvestLinks(root, 1);
  estimator.DetectRuns();
  std::string out;
  for (uint32_t e = 0; e < estimator.runs.map.count; e++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvPtrList* list = *estimator.runs.map.GetAt(e, &key, &keyLen);
    out += std::string(key ? key : "", size_t(keyLen)) + ":";
    for (int32_t i = 0; i < list->count; i++) {
      const OrvNumberLink* n = estimator.runs.At(list, i);
      out += " " + std::to_string(n->number) + "@" +
             std::to_string(reinterpret_cast<uintptr_t>(n->link.item)) + "=" +
             std::string(n->link.url.buf ? n->link.url.buf : "", size_t(n->link.url.len));
    }
    out += "\n";
  }
  if (estimator.runs.map.count > 0) {
    OrvPageTemplate made;
    int32_t at = BuildPageTemplate(made, **estimator.runs.map.GetAt(0));
    out += "template " + std::to_string(at);
    if (at >= 0) out += " " + std::string(made.url.buf) + " " + std::to_string(made.paramIndex);
  }
  estimator.ResetPage();
  return out;
}

void ExpectSameRuns(const std::string& tree) {
  ItemTree items(tree);
  for (bool wholePage : {true, false}) {
    std::string all = RunsOf(items.root(), 1, wholePage);
    EXPECT_EQ(RunsOf(items.root(), 0, wholePage), all) << (wholePage ? "page" : "probe");
  }
}

TEST(NumberTail, KeepsTheRunsOfTheWholeList) {
  // The hand-written pages of the harvest cases.
  std::ifstream in(ORV_CASES_DIR "/estimate/pages.txt");
  std::string line, name, tree;
  int cases = 0;
  auto check = [&] {
    if (name.empty()) return;
    SCOPED_TRACE(name);
    ++cases;
    ExpectSameRuns(tree);
  };
  while (std::getline(in, line)) {
    size_t colon = line.find(':');
    if (line.rfind("== ", 0) == 0) {
      check();
      name = line.substr(3), tree.clear();
    } else if (!(colon != std::string::npos && line.find_first_of(" \"=") > colon) &&
               !line.empty() && line[0] != '#') {
      tree += line + "\n";
    }
  }
  check();
  EXPECT_GT(cases, 40);

  // Pagers broken and resumed: numbers that rise, repeat and fall, links of
  // two classes, some wrapped so that link and text depths differ.
  std::mt19937 random(28);
  const int numbers[] = {0, 1, 2, 3, 4, 5, 7, 9};
  for (int page = 0; page < 300; page++) {
    std::string text = "body\n";
    int links = int(random() % 14);
    for (int i = 0; i < links; i++) {
      int number = numbers[random() % 8];
      std::string target = "/list?page=" + std::to_string(number * 10);
      std::string link = "a href=" + target + (random() % 4 ? " class=p" : " class=q");
      switch (random() % 4) {
        case 0:  // the text one deeper
          text += "  " + link + "\n    span\n      \"" + std::to_string(number) + "\"\n";
          break;
        case 1:  // the link one deeper
          text += "  div\n    " + link + "\n      \"" + std::to_string(number) + "\"\n";
          break;
        default:
          text += "  " + link + "\n    \"" + std::to_string(number) + "\"\n";
      }
    }
    SCOPED_TRACE(text);
    ExpectSameRuns(text);
  }
}

}  // namespace
