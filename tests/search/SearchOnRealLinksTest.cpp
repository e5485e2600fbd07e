#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "search/OrvUrlSearcher.h"

namespace {

// The search decides level by level instead of composing each stored URL's
// key; over the real links both must agree for every pair, matches included.
// Short texts over the bytes that steer parsing and extraction, NUL included,
// so that many of them share a key.
std::vector<std::string> RandomTexts(size_t n) {
  static const char alphabet[] = "/.?&=:#a1_%HTML\\\0\xFF";
  std::mt19937 random(7);
  std::vector<std::string> texts;
  for (size_t i = 0; i < n; i++) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = alphabet[random() % (sizeof alphabet - 1)];
    texts.push_back(text);
  }
  return texts;
}

TEST(SearchOnRealLinks, LevelByLevelMatchAgreesWithComposedKeys) {
  std::vector<std::string> texts;
  std::ifstream in(std::string(ORV_DATA_DIR) + "/links.txt", std::ios::binary);
  for (std::string line; std::getline(in, line);) texts.push_back(line);
  ASSERT_GT(texts.size(), 1000u);
  for (auto& text : RandomTexts(3000)) texts.push_back(text);

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
        ASSERT_EQ(searcher.HasKey(record, key, work), equal)
            << texts[e] << " / " << texts[size_t(i)];
        matches += equal;
      }
    }
    EXPECT_GT(matches, 1000u) << entry;
  }
}

}  // namespace
