#include <gtest/gtest.h>

#include "orvwebpage/OrvWebPageUrlsSearch.h"
#include "search/OrvUrlSearcher.h"
#include "url/UrlTestSupport.h"

namespace {

OrvString Orv(const std::string& s) { return OrvString(s.data(), long(s.size())); }

std::vector<std::string> Found(OrvWebPageUrlsSearch& search) {
  std::vector<std::string> found;
  OrvString url;
  for (unsigned i = 0; i < search.GetFoundUrlsCount(); i++) {
    url = "?";
    search.GetFoundUrl(i, url);
    found.push_back(Str(url));
  }
  return found;
}

std::string Search(OrvWebPageUrlsSearch& search, const std::string& example) {
  OrvString key("stale", 5);
  search.SearchUrls(Orv(example), key);
  return Str(key);
}

// The entry URL is set after the stored URLs: keys are worked out at the search.
TEST(Search, Cases) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/search/cases.tsv")) {
    ASSERT_GE(c.size(), 3u);
    OrvWebPageUrlsSearch search;
    std::vector<std::string> found;
    for (size_t i = 3; i < c.size(); i++) {
      std::string url = Unescape(c[i].substr(1));
      search.AddUrl(Orv(url));
      // Stored URLs are kept trimmed.
      url.erase(0, url.find_first_not_of(" \t"));
      if (c[i][0] == '+') found.push_back(url.erase(url.find_last_not_of(" \t") + 1));
    }
    search.SetEntryUrl(Orv(c[0]));
    EXPECT_EQ(search.GetInCount(), int(c.size() - 3));
    EXPECT_EQ(Search(search, Unescape(c[1])), c[2]) << c[1];
    EXPECT_EQ(Found(search), found) << c[1];
  }
}

TEST(Search, FoundListAccumulatesUntilClearUrls) {
  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(Orv("http://www.site.test/"));
  // More than one pool block, records with directories and parameters.
  for (int i = 0; i < 700; i++)
    search.AddUrl(Orv("http://other.test/d" + std::to_string(i) + "/x.html?a=1&b=2"));
  const std::vector<std::string> stored = {"http://site.test/a.html", "http://site.test/b.jpg",
                                           "http://site.test/c.htm"};
  for (const auto& url : stored) search.AddUrl(Orv(url));
  Search(search, "http://x.other.test/d/y.html?a=&b=");
  EXPECT_EQ(search.GetFoundUrlsCount(), 700u);
  search.ClearUrls();
  EXPECT_EQ(search.GetInCount(), 0);
  EXPECT_EQ(search.GetFoundUrlsCount(), 0u);
  // Reused records show nothing of their former URLs; the entry domain stays.
  for (const auto& url : stored) search.AddUrl(Orv(url));
  Search(search, "http://site.test/x.html");
  Search(search, "http://site.test/y.png");
  // The example may be the very string that receives the key.
  OrvString both("http://site.test/q.htm", -1);
  search.SearchUrls(both, both);
  EXPECT_EQ(Str(both), R"(\$/(.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E)^?)");
  EXPECT_EQ(Found(search),
            (std::vector<std::string>{stored[0], stored[2], stored[1], stored[0], stored[2]}));
  // Out of range: the string keeps what it held.
  for (unsigned index : {5u, 6u, 0xFFFFFFFFu}) {
    OrvString url("kept", 4);
    search.GetFoundUrl(index, url);
    EXPECT_EQ(Str(url), "kept") << index;
  }
}

// The search decides level by level instead of composing each stored URL's
// key; over the real links both must agree for every pair, matches included.
TEST(Search, LevelByLevelMatchAgreesWithComposedKeys) {
  auto links = ReadCases(ORV_DATA_DIR "/links.txt");
  for (const char* entry : {"", "https://www.nytimes.com/"}) {
    OrvUrlSearcher searcher;
    searcher.SetEntryUrl(OrvString(entry, -1));
    for (const auto& link : links) searcher.AddUrl(Orv(link[0]));
    OrvString key, composed, work;
    size_t matches = 0;
    for (size_t e = 0; e < links.size(); e += 211) {
      searcher.ComposeKey(*searcher.urls.items[e], key);
      for (int32_t i = 0; i < searcher.urls.count; i++) {
        searcher.ComposeKey(*searcher.urls.items[i], composed);
        bool equal = (composed == key) != 0;
        ASSERT_EQ(searcher.HasKey(*searcher.urls.items[i], key, work), equal) << e << " " << i;
        matches += equal;
      }
    }
    EXPECT_GT(matches, 1000u) << entry;
  }
}

}  // namespace
