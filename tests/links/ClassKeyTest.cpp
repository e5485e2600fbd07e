#include <gtest/gtest.h>

#include "LinksTestSupport.h"

namespace {

const char* const kOnSite = "http://web.site.test/";

struct KeyCase {
  const char* link;
  const char* entry;  // nullptr: no entry URL, hosts sort by their tail
  std::string key;
};

// One link alone makes one class; its key spells the four level keys.
TEST(ClassKey, OneLinkGivesItsKey) {
  const KeyCase cases[] = {
      {"http://web.site.test/news/201/a.html?b=1&a=2", kOnSite,
       R"(\$;/\s/\d;/)" + kPageFamily + ";?a;&b"},
      {"http://web.site.test/index.php", kOnSite, R"(\$;;/)" + kPageFamily + ";^?"},
      {"http://img.other.test/x.GIF", kOnSite, R"(^\$;;/)" + kMediaFamily + ";^?"},
      {"/news/", kOnSite, R"(\$;/\s;)" + kNoExtension + ";^?"},
      {"http://web.site.test/news/a.htm?id=1", nullptr,
       R"(site.test;/\s;/)" + kPageFamily + ";?id"},
      {"http://localhost/x.htm", nullptr, "/" + kPageFamily + ";^?"},
      // Empty level keys vanish only while everything before them is empty.
      {"http://localhost/news/x", nullptr, R"(/\s;)" + kNoExtension + ";^?"},
      {"http://localhost/", nullptr, kNoExtension + ";^?"},
      // A relative link's first segment is its host, off the entry domain.
      {"news/item.htm", kOnSite, R"(^\$;;/)" + kPageFamily + ";^?"},
      {"http://web.site.test/_a/7/b.jpg?y=2&x=1&x=3", kOnSite,
       R"(\$;/\S/\d;/)" + kImageFamily + ";?x;&x;&y"},
      {"http://web.site.test/a/b.css", kOnSite, R"(\$;/\s;/)" + kScriptFamily + ";^?"},
      {"http://web.site.test/a/b.pdf", kOnSite, R"(\$;/\s;/;^?)"},
      // "a" is the file part, not a directory.
      {"http://other.test/a?p", nullptr, "test;;" + kNoExtension + ";?p"},
      // An entry host without a dot leaves the domain empty: tails again.
      {"http://web.site.test/a.htm", "http://localhost/", "site.test;;/" + kPageFamily + ";^?"},
      // The domain is searched inside the host, in its letter case.
      {"http://SITE.TEST/", kOnSite, R"(^\$;;)" + kNoExtension + ";^?"},
      {"http://site.test.mirror.test/-/a.pdf", kOnSite, R"(\$;/\S;/;^?)"},
  };
  for (const KeyCase& c : cases) {
    SCOPED_TRACE(c.link);
    OrvWebPageUrls urls;
    if (c.entry) {
      EXPECT_EQ(urls.SetEntryUrl(Orv(c.entry)), 1);
    }
    EXPECT_EQ(urls.AddLink(Orv(c.link), Orv(""), nullptr), 1);
    EXPECT_EQ(urls.ClassifyUrls(), 1);
    auto classes = ReadClasses(urls);
    ASSERT_EQ(classes.size(), 1u);
    EXPECT_EQ(classes[0].key, c.key);
    ASSERT_EQ(classes[0].links.size(), 1u);
    EXPECT_EQ(classes[0].links[0].url, c.link);
  }
}

struct PairCase {
  const char* a;
  const char* b;
  bool sameClass;
};

// Which differences between two links matter to the classes, with the entry
// domain site.test.
TEST(ClassKey, WhatSeparatesTwoLinks) {
  const PairCase cases[] = {
      {"http://web.site.test/a/x.htm", "https://web.site.test/a/x.htm", true},
      {"http://web.site.test/a/x.htm", "ftp://web.site.test/a/y.htm", true},
      {"http://web.site.test/a/x.htm?id=1", "http://web.site.test/a/x.htm?id=2", true},
      {"http://web.site.test/x.htm?a=1&b=2", "http://web.site.test/x.htm?b=2&a=1", true},
      {"http://web.site.test/x.htm#top", "http://web.site.test/x.htm", true},
      {"http://h.test/a/x.htm", "http://h.test/b/y.HTML", true},
      {"http://h.test/a/x.htm", "http://h.test/1/x.htm", false},
      {"http://web.site.test/News/x.htm", "http://web.site.test/news/x.htm", true},
      {"http://web.site.test/a/x.js", "http://web.site.test/a/x.html", true},
      {"http://web.site.test/a/x.css", "http://web.site.test/a/x.html", false},
      {"http://web.site.test/a/x.htm", "http://web.site.test/a/b/x.htm", false},
      {"http://web.site.test/x?id=1", "http://web.site.test/x?page=1", false},
      {"http://web.site.test/x?id=1", "http://web.site.test/x?ID=1", false},
      {"http://web.site.test/x?id=1", "http://web.site.test/x", false},
      {"http://web.site.test/x.htm", "http://other.test/x.htm", false},
      {"http://web.site.test/x.htm", "http://cdn.site.test.example/x.htm", true},
      {"http://web.site.test/a", "http://web.site.test/a.htm", false},
      {"http://web.site.test/x.jpg", "http://web.site.test/x.PNG", true},
      {"http://web.site.test/x.jpg", "http://web.site.test/x.gif", false},
  };
  for (const PairCase& c : cases) {
    SCOPED_TRACE(std::string(c.a) + "  vs  " + c.b);
    OrvWebPageUrls urls;
    urls.SetEntryUrl(Orv(kOnSite));
    urls.AddLink(Orv(c.a), Orv(""), Tag(1));
    urls.AddLink(Orv(c.b), Orv(""), Tag(2));
    urls.ClassifyUrls();
    auto classes = ReadClasses(urls);
    ASSERT_EQ(classes.size(), c.sameClass ? 1u : 2u);
    if (c.sameClass) {
      ASSERT_EQ(classes[0].links.size(), 2u);
      EXPECT_EQ(classes[0].links[0].userData, Tag(1));
      EXPECT_EQ(classes[0].links[1].userData, Tag(2));
    }
  }
}

// The stored bytes of EnableUrlFilterExtractor are never read: every level
// always runs.
TEST(ClassKey, EnabledExtractorBytesChangeNothing) {
  const char* links[] = {"http://web.site.test/news/1.html?id=1",
                         "http://other.test/a/b/c",
                         "/img/x.png",
                         "mailto:someone@site.test",
                         "javascript:void(0)",
                         "http://web.site.test/news/2.html?id=2&p=3"};
  OrvWebPageUrls plain;
  plain.SetEntryUrl(Orv(kOnSite));
  for (const char* link : links) plain.AddLink(Orv(link), Orv("l"), nullptr);
  plain.ClassifyUrls();
  const auto expected = ReadClasses(plain);

  const std::vector<std::vector<unsigned char>> enables = {
      {0}, {3}, {2, 2, 2}, {255, 4, 0}, {1, 0, 3, 2}};
  for (const auto& bytes : enables) {
    OrvWebPageUrls urls;
    for (unsigned char b : bytes) urls.EnableUrlFilterExtractor(b);
    urls.SetEntryUrl(Orv(kOnSite));
    for (const char* link : links) urls.AddLink(Orv(link), Orv("l"), nullptr);
    urls.ClassifyUrls();
    EXPECT_EQ(ReadClasses(urls), expected);
  }
}

}  // namespace
