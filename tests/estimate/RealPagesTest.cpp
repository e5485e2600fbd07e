// The harvest and the analysis up to the probes on every saved real page:
// both walks agree on links and numbers, and a second page cycle on the same
// estimator gives what the first gave. The probes are left out, since they
// would go to the pages' own hosts.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "HarvestSummary.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "orvwebpage/OrvHtml.h"

namespace {

std::string Gathered(OrvWebPageCountEstimateImpl& e) {
  return SummariseLinks(e) + "\n" + SummariseNumbers(e);
}

std::string Analyse(OrvWebPageCountEstimateImpl& e, var_item* root, std::string& gathered) {
  OrvHarvestWalk walk;
  walk.harvest = &e;
  walk.HarvestPage(root, 1);
  gathered = Gathered(e);
  e.DetectRuns();
  e.PruneTextDepths();
  e.CollectPageUrls();
  std::string templates;
  for (uint32_t i = 0; i < e.runs.map.count; i++) {
    OrvPageTemplate pageTemplate;
    int32_t at = BuildPageTemplate(pageTemplate, **e.runs.map.GetAt(i));
    if (at >= 0)
      templates += std::to_string(at) + " " + std::string(pageTemplate.url.buf) + " " +
                   std::to_string(pageTemplate.step) + " " + std::to_string(pageTemplate.offset);
  }
  std::string out = gathered + "\n" + SummariseRuns(e) + "\n" + SummariseText(e) + "\n" +
                    std::to_string(e.pageUrls.count) + "\n" + templates;
  e.ResetPage();
  return out;
}

TEST(RealPages, WalksAgreeAndRepeat) {
  int pages = 0;
  for (const auto& file : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages")) {
    std::ifstream in(file.path(), std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    std::string body = bytes.str();
    OrvHtml document;
    ASSERT_EQ(document.Open(body.data(), long(body.size()), ORV_CHARSET_BYTES), 0) << file.path();
    OrvWebPageCountEstimateImpl estimator;
    OrvString entry("http://www.example.test/", -1);
    estimator.SetEntryUrl(entry);
    std::string gathered, again;
    std::string first = Analyse(estimator, document.root, gathered);
    EXPECT_EQ(Analyse(estimator, document.root, again), first) << file.path();

    OrvHarvestWalk probe;
    probe.harvest = &estimator;
    probe.HarvestLinks(document.root, 1);
    EXPECT_EQ(Gathered(estimator), gathered) << file.path();
    estimator.ResetPage();
    pages++;
  }
  EXPECT_GT(pages, 60);
}

}  // namespace
