#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "search/OrvUrlSearcher.h"

namespace {

// The search decides level by level instead of composing each stored URL's
// key; over the real links both must agree for every pair, matches included.
TEST(SearchOnRealLinks, LevelByLevelMatchAgreesWithComposedKeys) {
  std::vector<std::string> texts;
  std::ifstream in(std::string(ORV_DATA_DIR) + "/links.txt", std::ios::binary);
  for (std::string line; std::getline(in, line);) texts.push_back(line);
  ASSERT_GT(texts.size(), 1000u);

  for (const char* entry : {"", "https://www.nytimes.com/", "http://localhost/"}) {
    OrvUrlSearcher searcher;
    if (*entry) searcher.SetEntryUrl(OrvString(entry, -1));
    for (const auto& t : texts) searcher.AddUrl(OrvString(t.data(), long(t.size())));
    OrvString key, composed, work;
    size_t matches = 0;
    for (size_t e = 0; e < texts.size(); e += 211) {
      OrvWebPageUrl example;
      example.url = OrvString(texts[e].data(), long(texts[e].size()));
      example.Parse(0);
      searcher.ComposeKey(example, key);
      for (int32_t i = 0; i < searcher.urls.count; i++) {
        const OrvWebPageUrl& record = *searcher.urls.items[i];
        searcher.ComposeKey(record, composed);
        bool equal = (composed == key) != 0;
        ASSERT_EQ(searcher.HasKey(record, key, work), equal) << texts[e] << " / " << texts[size_t(i)];
        matches += equal;
      }
    }
    EXPECT_GT(matches, 1000u) << entry;
  }
}

}  // namespace
