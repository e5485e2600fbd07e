#include <gtest/gtest.h>

#include <string>

#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

const std::string kRow1 = "(.htm\\E,.html\\E,.phtml\\E,.shtml\\E,.jsp\\E,.php\\E,.asp\\E,.ksp\\E)";
const std::string kRow2 = "(.jpg\\E,.png\\E,.ico\\E)";
const std::string kRow3 = "(.js\\E,.css\\E)";
const std::string kRow4 = "(.mp3\\E,.wma\\E)";
const std::string kRow5 = "(.flv\\E,.gif\\E)";
const std::string kNoExt = "(/\\S\\E,/\\E)";
const std::string kOn = "\\$";
const std::string kOff = "^\\$";

std::string Text(const OrvString& s) { return s.len > 0 ? std::string(s.buf, size_t(s.len)) : ""; }

OrvWebPageUrl Parsed(const std::string& text) {
  OrvWebPageUrl url;
  url.url.CopyBuf(text.data(), long(text.size()));
  url.Parse(1);
  return url;
}

std::string Key(const OrvUrlFilterExtractor& x, uint8_t level, const OrvWebPageUrl& url) {
  OrvString key;
  x.Extract(level, key, url);
  return Text(key);
}

TEST(UrlFilterExtractor, KeysOfEachLevel) {
  struct Case {
    std::string url, host, path, extension, query, hostWithoutDomain;
  };
  const Case cases[] = {
      {"http://web.site.test/news/201/a.html?b=1&a=2", kOn, "/\\s/\\d", "/" + kRow1, "?a;&b",
       "site.test"},
      {"http://img.other.test/x.GIF", kOff, "", "/" + kRow5, "^?", "other.test"},
      {"/news/", kOn, "/\\s", kNoExt, "^?", ""},
      {"news/item.htm", kOff, "", "/" + kRow1, "^?", ""},
      {"http://site.test.mirror.test/-/a.pdf", kOn, "/\\S", "/", "^?", "test.mirror.test"},
      {"http://SITE.TEST/", kOff, "", kNoExt, "^?", "TEST"},
      // Only the first byte of a directory counts; bytes above 127 are "other".
      {"http://h.site.test/2x/7/x9/_x/\xC3\xA9t\xC3\xA9/?id=1&page=2", kOn, "/\\d/\\d/\\s/\\S/\\S",
       kNoExt, "?id;&page", "site.test"},
      {"", kOn, "", kNoExt, "^?", ""},
  };
  OrvUrlFilterExtractor onSite, noDomain;
  OrvString entryHost("www.site.test", -1);
  onSite.SetEntryHost(entryHost);
  EXPECT_EQ(Text(onSite.entryDomain), "site.test");
  for (const auto& c : cases) {
    OrvWebPageUrl url = Parsed(c.url);
    EXPECT_EQ(Key(onSite, 0, url), c.host) << c.url;
    EXPECT_EQ(Key(onSite, 1, url), c.path) << c.url;
    EXPECT_EQ(Key(onSite, 2, url), c.extension) << c.url;
    EXPECT_EQ(Key(onSite, 3, url), c.query) << c.url;
    EXPECT_EQ(Key(noDomain, 0, url), c.hostWithoutDomain) << c.url;
  }

  // The extension is searched in the whole row text, case-blind, punctuation included.
  struct ExtCase {
    std::string ext, key;
  };
  const ExtCase extensions[] = {
      {"html", "/" + kRow1},  {"HTM", "/" + kRow1},
      {"shtml", "/" + kRow1}, {"Php", "/" + kRow1},
      {"jsp", "/" + kRow1},   {"js", "/" + kRow1},
      {"css", "/" + kRow3},   {"CSS", "/" + kRow3},
      {"jpg", "/" + kRow2},   {"PNG", "/" + kRow2},
      {"ico", "/" + kRow2},   {"mp3", "/" + kRow4},
      {"wma", "/" + kRow4},   {"flv", "/" + kRow5},
      {"gif", "/" + kRow5},   {"h", "/" + kRow1},
      {"p", "/" + kRow1},     {"sp", "/" + kRow1},
      {"ht", "/" + kRow1},    {"ml", "/" + kRow1},
      {"E", "/" + kRow1},     {"e", "/" + kRow1},
      {"aspx", "/"},          {"htmlx", "/"},
      {"pdf", "/"},           {"php5", "/"},
      {"", kNoExt},           {"\\E,.", "/" + kRow1},
      {"E)", "/" + kRow1},    {"ksp\\E)x", "/"},
      {"\xC4\xB0", "/"},      {"(.flv\\E,.gif\\E)", "/" + kRow5},
  };
  for (const auto& e : extensions) {
    OrvWebPageUrl url;
    url.ext.CopyBuf(e.ext.data(), long(e.ext.size()));
    EXPECT_EQ(Key(noDomain, 2, url), e.key) << e.ext;
  }
}

TEST(UrlFilterExtractor, HostTailAndClasses) {
  struct TailCase {
    std::string text;
    long length;
    std::string tail;
  };
  const TailCase tails[] = {
      {"web.site.test", -1, "site.test"},
      {"site.test", -1, "test"},
      {"h.test:80", -1, "test:80"},
      {"localhost", -1, ""},
      {".test", -1, "test"},
      {"a.", -1, ""},
      {"web.site.test", 3, ""},
      {"web.site.test", 4, ""},
      {"web.site.test", 6, "si"},
      {std::string("ab\0.c", 5), 5, ""},
      {"", -1, ""},
  };
  for (const auto& t : tails) {
    OrvString tail("old", 3);
    OrvUrlFilterExtractor::HostTail(tail, t.text.c_str(), t.length);
    EXPECT_EQ(Text(tail), t.tail) << t.text << " " << t.length;
    EXPECT_NE(tail.buf, nullptr);
  }
  OrvString untouched("old", 3);
  OrvUrlFilterExtractor::HostTail(untouched, nullptr, 5);
  EXPECT_EQ(untouched.len, 0);

  struct ClassCase {
    const char* text;
    long length;
    uint16_t cls;
  };
  const ClassCase classes[] = {
      {"A", 1, 1},    {"z", 1, 1},   {"Zx", 2, 1},      {"0", 1, 2},    {"9a", 2, 2}, {"_", 1, 0},
      {"@", 1, 0},    {"[", 1, 0},   {"`", 1, 0},       {"{", 1, 0},    {"/", 1, 0},  {":", 1, 0},
      {"\xE9", 1, 0}, {"a", 0, 255}, {nullptr, 3, 255}, {"a", -1, 255},
  };
  for (const auto& c : classes)
    EXPECT_EQ(OrvUrlFilterExtractor::FirstCharClass(c.text, c.length), c.cls)
        << (c.text ? c.text : "NULL") << " " << c.length;
}

TEST(UrlFilterExtractor, EntryDomainAndLevelsBeyondThree) {
  OrvUrlFilterExtractor x;
  OrvWebPageUrl url = Parsed("http://a.test.example/x");
  OrvString key("kept", 4);
  for (uint8_t level : {uint8_t(4), uint8_t(5), uint8_t(255)}) {
    x.Extract(level, key, url);
    EXPECT_EQ(Text(key), "kept");
  }
  // site.test leaves the domain "test": any host holding those bytes is on it.
  x.SetEntryHost(OrvString("site.test", -1));
  EXPECT_EQ(Key(x, 0, url), kOn);
  EXPECT_EQ(Key(x, 0, Parsed("http://contest.org/")), kOn);
  EXPECT_EQ(Key(x, 0, Parsed("http://tes.org/")), kOff);
  // A host without a dot empties the domain again: hosts go by their tails.
  x.SetEntryHost(OrvString("localhost", -1));
  EXPECT_EQ(x.entryDomain.len, 0);
  EXPECT_EQ(Key(x, 0, url), "test.example");
  // Every level replaces what the key held.
  OrvString stale("stale", 5);
  x.Extract(1, stale, url);
  EXPECT_EQ(Text(stale), "");
}

}  // namespace
