#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageUrlsSearch.h"
#include "search/OrvUrlSearcher.h"

namespace {

const std::string kRow1 = "(.htm\\E,.html\\E,.phtml\\E,.shtml\\E,.jsp\\E,.php\\E,.asp\\E,.ksp\\E)";
const std::string kNoExt = "(/\\S\\E,/\\E)";

OrvString S(const std::string& s) { return OrvString(s.data(), long(s.size())); }
std::string Text(const OrvString& s) { return s.len > 0 ? std::string(s.buf, size_t(s.len)) : ""; }

std::vector<std::string> Found(OrvWebPageUrlsSearch& search) {
  std::vector<std::string> found;
  OrvString url;
  for (unsigned i = 0; i < search.GetFoundUrlsCount(); i++) {
    url.CopyBuf("?", 1);
    search.GetFoundUrl(i, url);
    found.push_back(Text(url));
  }
  return found;
}

std::string Search(OrvWebPageUrlsSearch& search, const std::string& example) {
  OrvString key("stale", 5);
  search.SearchUrls(S(example), key);
  return Text(key);
}

TEST(UrlsSearch, KeysAndMatches) {
  struct Case {
    std::string name;
    std::string entry;  // empty: no SetEntryUrl
    std::vector<std::string> stored;
    std::string example;
    std::string key;
    std::vector<std::string> found;
  };
  const Case cases[] = {
      {"nothing stored still gives a key",
       "http://www.site.test/",
       {},
       "http://site.test/news/201/a.html?page=2&id=7",
       "\\$/\\s/\\d/" + kRow1 + "?page;&id",
       {}},
      {"the example's own text is found; values and stems do not count",
       "http://www.site.test/",
       {"http://a.site.test/news/9/b.htm?page=5&id=1",
        "http://site.test/news/201/a.html?page=2&id=7",
        "http://site.test/news/201/a.html?id=7&page=2",
        "http://site.test/news/x/a.html?page=2&id=7",
        "http://other.test/news/201/a.html?page=2&id=7", "/news/3/c.php?page=&id"},
       "http://site.test/news/201/a.html?page=2&id=7",
       "\\$/\\s/\\d/" + kRow1 + "?page;&id",
       {"http://a.site.test/news/9/b.htm?page=5&id=1",
        "http://site.test/news/201/a.html?page=2&id=7", "/news/3/c.php?page=&id"}},
      {"empty levels add nothing to the key",
       "http://www.site.test/",
       {"http://site.test/", "http://site.test/x/", "http://site.test/?a=1", "http://x.site.test"},
       "http://site.test/",
       "\\$" + kNoExt + "^?",
       // A "?" right behind the host opens no query: it is the file name.
       {"http://site.test/", "http://site.test/?a=1", "http://x.site.test"}},
      {"without an entry URL, hosts go by their tails",
       "",
       {"http://a.site.test/p.html", "http://b.site.test/q.htm", "http://site.test/p.html",
        "http://b.other.test/p.html"},
       "http://www.site.test/x.php",
       "site.test/" + kRow1 + "^?",
       {"http://a.site.test/p.html", "http://b.site.test/q.htm"}},
      {"a host without a dot gives an empty level 0",
       "",
       {"http://localhost/a.html", "/a.html", "http://localhost/b/a.html"},
       "http://intranet/z.htm",
       "/" + kRow1 + "^?",
       {"http://localhost/a.html", "/a.html"}},
      {"blanks are trimmed from stored URLs",
       "http://site.test/",
       {"  http://site.test/a.jpg \t", "http://site.test/b.png"},
       " http://site.test/c.ico ",
       "\\$/(.jpg\\E,.png\\E,.ico\\E)^?",
       {"http://site.test/a.jpg", "http://site.test/b.png"}},
      {"a duplicate is stored and found twice",
       "http://site.test/",
       {"http://site.test/a?x=1", "http://site.test/a?x=1", "http://site.test/a?y=1"},
       "http://site.test/b?x=2",
       "\\$" + kNoExt + "?x",
       {"http://site.test/a?x=1", "http://site.test/a?x=1"}},
      {"any bytes are a URL",
       "",
       {"", "\xFF\xFE:\x01//", "javascript:void(0)", "x.y.z/", "?&&=&", "#", "////", "a/b/"},
       "",
       kNoExt + "^?",
       {"", "\xFF\xFE:\x01//", "javascript:void(0)", "?&&=&", "#", "////"}},
  };
  for (const auto& c : cases) {
    OrvWebPageUrlsSearch search;
    if (!c.entry.empty()) search.SetEntryUrl(S(c.entry));
    for (const auto& url : c.stored) search.AddUrl(S(url));
    EXPECT_EQ(search.GetInCount(), int(c.stored.size())) << c.name;
    EXPECT_EQ(Search(search, c.example), c.key) << c.name;
    EXPECT_EQ(Found(search), c.found) << c.name;
  }
}

TEST(UrlsSearch, FoundListAccumulatesAcrossSearches) {
  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(S("http://site.test/"));
  const std::vector<std::string> stored = {"http://site.test/a.html", "http://site.test/b.jpg",
                                           "http://site.test/c.htm"};
  for (const auto& url : stored) search.AddUrl(S(url));
  Search(search, "http://site.test/x.html");
  EXPECT_EQ(search.GetFoundUrlsCount(), 2u);
  Search(search, "http://site.test/x.html");
  Search(search, "http://site.test/y.png");
  EXPECT_EQ(Found(search),
            (std::vector<std::string>{stored[0], stored[2], stored[0], stored[2], stored[1]}));
  Search(search, "http://site.test/none/");
  EXPECT_EQ(search.GetFoundUrlsCount(), 5u);

  // Out of range: the string keeps what it held.
  for (unsigned index : {5u, 6u, 0xFFFFFFFFu}) {
    OrvString url("kept", 4);
    search.GetFoundUrl(index, url);
    EXPECT_EQ(Text(url), "kept") << index;
  }

  // The example may be the very string that receives the key.
  OrvString both("http://site.test/q.htm", -1);
  search.SearchUrls(both, both);
  EXPECT_EQ(Text(both), "\\$/" + kRow1 + "^?");
  EXPECT_EQ(search.GetFoundUrlsCount(), 7u);
}

TEST(UrlsSearch, ClearUrlsRewindsAndKeepsTheEntry) {
  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(S("http://www.site.test/"));
  // More than one pool block, records with directories and parameters.
  for (int i = 0; i < 700; i++)
    search.AddUrl(S("http://other.test/d" + std::to_string(i) + "/x.html?a=1&b=2"));
  Search(search, "http://x.other.test/d/y.html?a=&b=");
  EXPECT_EQ(search.GetFoundUrlsCount(), 700u);

  search.ClearUrls();
  EXPECT_EQ(search.GetInCount(), 0);
  EXPECT_EQ(search.GetFoundUrlsCount(), 0u);
  OrvString url("kept", 4);
  search.GetFoundUrl(0, url);
  EXPECT_EQ(Text(url), "kept");

  // Reused records show nothing of their former URLs.
  const std::vector<std::string> again = {"http://a.site.test", "/", "http://site.test/x.html"};
  for (const auto& u : again) search.AddUrl(S(u));
  EXPECT_EQ(search.GetInCount(), 3);
  EXPECT_EQ(Search(search, "http://site.test/"), "\\$" + kNoExt + "^?");
  EXPECT_EQ(Found(search), (std::vector<std::string>{again[0], again[1]}));
  // The entry domain stayed: other.test is still off the site.
  EXPECT_EQ(Search(search, "http://other.test/"), "^\\$" + kNoExt + "^?");
}

TEST(UrlsSearch, EntryMayComeAfterTheUrlsAndParametersKeepTheirOrder) {
  OrvWebPageUrlsSearch search;
  search.AddUrl(S("http://site.test/p?a=1&b=2"));
  search.AddUrl(S("http://site.test/p?b=1&a=2"));
  search.AddUrl(S("http://elsewhere.test/p?a=1&b=2"));
  search.SetEntryUrl(S("http://www.site.test/index.html?b=1&a=2"));
  EXPECT_EQ(Search(search, "http://site.test/q?a=9&b=9"), "\\$" + kNoExt + "?a;&b");
  EXPECT_EQ(Found(search), (std::vector<std::string>{"http://site.test/p?a=1&b=2"}));
}

TEST(UrlsSearch, ComposeKeyReplacesTheTarget) {
  OrvUrlSearcher searcher;
  OrvWebPageUrl record;
  record.url.CopyBuf("http://h.test/a/1/", -1);
  record.Parse(0);
  OrvString key("old text", -1);
  searcher.ComposeKey(record, key);
  EXPECT_EQ(Text(key), "test/\\s/\\d" + kNoExt + "^?");
  // Level 0 empty and the target still replaced.
  record.url.CopyBuf("http://localhost/", -1);
  record.Parse(0);
  searcher.ComposeKey(record, key);
  EXPECT_EQ(Text(key), kNoExt + "^?");
}

TEST(UrlsSearch, CopiesShareOneSearcher) {
  // Each order in which three sharing facades can go must leave no leak and
  // no double free (run under the sanitizers).
  const int orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  for (const auto& order : orders) {
    auto a = std::make_unique<OrvWebPageUrlsSearch>();
    a->AddUrl(S("http://site.test/a.html"));
    auto b = std::make_unique<OrvWebPageUrlsSearch>(*a);
    auto c = std::make_unique<OrvWebPageUrlsSearch>();
    c->AddUrl(S("http://c.test/"));
    *c = *b;  // c's own searcher goes with its last reference
    *c = *c;
    *b = *c;
    c->AddUrl(S("http://site.test/b.htm"));
    EXPECT_EQ(a->GetInCount(), 2);
    EXPECT_EQ(b->GetInCount(), 2);
    std::unique_ptr<OrvWebPageUrlsSearch>* all[3] = {&a, &b, &c};
    for (int i = 0; i < 3; i++) {
      all[order[i]]->reset();
      for (int j = i + 1; j < 3; j++) EXPECT_EQ((*all[order[j]])->GetInCount(), 2);
    }
  }
  // Assigning away from a shared searcher leaves the other sharer intact.
  OrvWebPageUrlsSearch x, y;
  x.AddUrl(S("u"));
  y = x;
  y = OrvWebPageUrlsSearch();
  EXPECT_EQ(x.GetInCount(), 1);
  EXPECT_EQ(y.GetInCount(), 0);
}

}  // namespace
