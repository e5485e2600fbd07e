#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "LinksTestSupport.h"

namespace {

const char* const kEntry = "http://web.site.test/";

std::vector<std::string> DataLinks() {
  std::ifstream in(std::string(ORV_DATA_DIR) + "/links.txt", std::ios::binary);
  std::vector<std::string> links;
  for (std::string line; std::getline(in, line);) links.push_back(line);
  return links;
}

void AddFiveLinks(OrvWebPageUrls& urls) {
  urls.SetEntryUrl(Orv(kEntry));
  const char* links[] = {"http://web.site.test/news/1.html?id=1",
                         "http://web.site.test/news/2.html?id=2", "http://web.site.test/about.html",
                         "http://web.site.test/img/a.jpg", "http://other.test/x.html"};
  intptr_t n = 0;
  for (const char* link : links) {
    n++;
    urls.AddLink(Orv(link), Orv("label " + std::to_string(n)), Tag(n));
  }
}

// Classes come in the flat order of the class map, links in AddLink order.
TEST(ClassResults, FiveLinksGiveFourClassesInMapOrder) {
  OrvWebPageUrls urls;
  AddFiveLinks(urls);
  EXPECT_EQ(urls.ClassifyUrls(), 1);
  const std::vector<SeenClass> expected = {
      {R"(\$;;/)" + kPageFamily + ";^?", {{"http://web.site.test/about.html", "label 3", Tag(3)}}},
      {R"(\$;/\s;/)" + kPageFamily + ";?id",
       {{"http://web.site.test/news/1.html?id=1", "label 1", Tag(1)},
        {"http://web.site.test/news/2.html?id=2", "label 2", Tag(2)}}},
      {R"(\$;/\s;/)" + kImageFamily + ";^?",
       {{"http://web.site.test/img/a.jpg", "label 4", Tag(4)}}},
      {R"(^\$;;/)" + kPageFamily + ";^?", {{"http://other.test/x.html", "label 5", Tag(5)}}},
  };
  EXPECT_EQ(urls.GetClassCount(), 4);
  EXPECT_EQ(ReadClasses(urls), expected);
  // A second walk reads the same.
  EXPECT_EQ(ReadClasses(urls), expected);
}

TEST(ClassResults, NoLinksNoClasses) {
  OrvWebPageUrls urls;
  EXPECT_EQ(urls.ClassifyUrls(), 1);
  EXPECT_EQ(urls.GetClassCount(), 0);
  urls.SetEntryUrl(Orv(kEntry));
  EXPECT_EQ(urls.ClassifyUrls(), 1);
  EXPECT_EQ(urls.GetClassCount(), 0);
}

// A URL added twice stands twice, each time with its own label and value,
// and the class keeps AddLink order around the other links.
TEST(ClassResults, DuplicatesStandTwiceInAddOrder) {
  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv(kEntry));
  urls.AddLink(Orv("http://web.site.test/a/1.htm"), Orv("first"), Tag(10));
  urls.AddLink(Orv("http://other.test/"), Orv("off"), Tag(11));
  urls.AddLink(Orv("  http://web.site.test/a/1.htm\t"), Orv("second"), Tag(12));
  urls.AddLink(Orv("http://web.site.test/b/2.htm"), Orv("third"), Tag(13));
  urls.AddLink(Orv("http://web.site.test/a/1.htm"), Orv(""), Tag(14));
  urls.ClassifyUrls();
  auto classes = ReadClasses(urls);
  ASSERT_EQ(classes.size(), 2u);
  const SeenClass* onSite = classes[0].links.size() == 4 ? &classes[0] : &classes[1];
  const std::vector<SeenLink> expected = {
      {"http://web.site.test/a/1.htm", "first", Tag(10)},
      {"http://web.site.test/a/1.htm", "second", Tag(12)},  // trimmed, not rebuilt
      {"http://web.site.test/b/2.htm", "third", Tag(13)},
      {"http://web.site.test/a/1.htm", "", Tag(14)},
  };
  EXPECT_EQ(onSite->links, expected);
}

struct Probe {
  const char* what;
  intptr_t handle;
  int index;
};

// Every read outside the classes answers 0 and leaves its outputs as they were.
TEST(ClassResults, OutOfRangeLeavesOutputsUntouched) {
  OrvWebPageUrls urls;
  AddFiveLinks(urls);
  auto probeAll = [&urls](const std::vector<Probe>& probes) {
    for (const Probe& p : probes) {
      SCOPED_TRACE(p.what);
      void* handle = urls.FetchClass(int(p.handle));
      EXPECT_EQ(handle, Tag(p.handle)) << "FetchClass hands the number back as it is";
      OrvString key("old key", -1), url("old url", -1), label("old label", -1);
      void* userData = Tag(77);
      bool handleOk = uintptr_t(p.handle) < uintptr_t(urls.GetClassCount());
      if (!handleOk) {
        EXPECT_EQ(urls.GetClassKeyStr(handle, key), 0);
        EXPECT_EQ(urls.GetUrlCount(handle), 0);
        EXPECT_EQ(Std(key), "old key");
      }
      EXPECT_EQ(urls.FetchUrl(handle, p.index, url, label, userData), 0);
      EXPECT_EQ(Std(url), "old url");
      EXPECT_EQ(Std(label), "old label");
      EXPECT_EQ(userData, Tag(77));
    }
  };
  const std::vector<Probe> everyHandle = {{"handle 0", 0, 0},
                                          {"handle 3", 3, 0},
                                          {"handle -1", -1, 0},
                                          {"handle 4", 4, 0},
                                          {"handle INT_MIN", INT_MIN, 0},
                                          {"handle INT_MAX", INT_MAX, 0}};
  probeAll(everyHandle);  // before ClassifyUrls: nothing is in range

  urls.ClassifyUrls();
  probeAll({{"handle -1", -1, 0},
            {"handle = count", 4, 0},
            {"handle far out", 1000, 0},
            {"handle INT_MIN", INT_MIN, 0},
            {"handle INT_MAX", INT_MAX, 0},
            {"index -1", 1, -1},
            {"index = count", 1, 2},
            {"index = count of a single", 0, 1},
            {"index INT_MIN", 1, INT_MIN},
            {"index INT_MAX", 3, INT_MAX}});

  urls.ClearLinks();
  EXPECT_EQ(urls.GetClassCount(), 0);
  probeAll(everyHandle);
}

TEST(ClassResults, KeyReadReplacesOldText) {
  OrvWebPageUrls urls;
  urls.AddLink(Orv("http://localhost/x.htm"), Orv(""), nullptr);
  urls.ClassifyUrls();
  OrvString key("a much longer text that stood here before the read", -1);
  ASSERT_EQ(urls.GetClassKeyStr(urls.FetchClass(0), key), 1);
  EXPECT_EQ(Std(key), "/" + kPageFamily + ";^?");
  EXPECT_EQ(key.buf[key.len], '\0');
}

// Over real links: every link lands in exactly one class, in AddLink order,
// and the counts add up.
TEST(ClassResults, RealLinksEachInOneClassInOrder) {
  const auto links = DataLinks();
  ASSERT_GT(links.size(), 10000u);
  for (const char* entry : {"", "https://medium.com/", "http://en.wikipedia.org/"}) {
    SCOPED_TRACE(entry);
    OrvWebPageUrls urls;
    if (*entry) urls.SetEntryUrl(Orv(entry));
    for (size_t i = 0; i < links.size(); i++)
      urls.AddLink(Orv(links[i]), Orv(""), Tag(intptr_t(i)));
    urls.ClassifyUrls();
    auto classes = ReadClasses(urls);
    ASSERT_EQ(int(classes.size()), urls.GetClassCount());
    size_t total = 0;
    std::set<void*> seen;
    std::set<std::string> keys;
    for (const auto& c : classes) {
      EXPECT_FALSE(c.key.empty());
      EXPECT_TRUE(keys.insert(c.key).second) << "key twice: " << c.key;
      EXPECT_FALSE(c.links.empty());
      EXPECT_EQ(urls.GetUrlCount(urls.FetchClass(int(&c - classes.data()))), int(c.links.size()));
      total += c.links.size();
      for (size_t i = 0; i < c.links.size(); i++) {
        EXPECT_TRUE(seen.insert(c.links[i].userData).second);
        if (i > 0) {
          EXPECT_LT(c.links[i - 1].userData, c.links[i].userData);
        }
      }
    }
    EXPECT_EQ(total, links.size());

    // The same calls on another object give the same classes in the same order.
    OrvWebPageUrls again;
    if (*entry) again.SetEntryUrl(Orv(entry));
    for (size_t i = 0; i < links.size(); i++)
      again.AddLink(Orv(links[i]), Orv(""), Tag(intptr_t(i)));
    again.ClassifyUrls();
    EXPECT_EQ(ReadClasses(again), classes);
  }
}

// A second classification after a read must number every class, the new
// ones included, and each class then holds all of its links.
TEST(ClassResults, ClassifyAgainAfterReadSeesEveryClass) {
  const auto links = DataLinks();
  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv("https://medium.com/"));
  size_t half = links.size() / 2;
  for (size_t i = 0; i < half; i++) urls.AddLink(Orv(links[i]), Orv(""), Tag(intptr_t(i)));
  urls.ClassifyUrls();
  const int firstCount = urls.GetClassCount();
  OrvString key;
  ASSERT_EQ(urls.GetClassKeyStr(urls.FetchClass(0), key), 1);  // the read builds the order

  for (size_t i = half; i < links.size(); i++)
    urls.AddLink(Orv(links[i]), Orv(""), Tag(intptr_t(i)));
  urls.ClassifyUrls();
  ASSERT_GT(urls.GetClassCount(), firstCount);
  auto classes = ReadClasses(urls);

  OrvWebPageUrls fresh;
  fresh.SetEntryUrl(Orv("https://medium.com/"));
  for (size_t i = 0; i < links.size(); i++) fresh.AddLink(Orv(links[i]), Orv(""), Tag(intptr_t(i)));
  fresh.ClassifyUrls();
  auto expected = ReadClasses(fresh);
  // Same classes with the same links; only the order of classes may differ.
  ASSERT_EQ(classes.size(), expected.size());
  auto byKey = [](std::vector<SeenClass> v) {
    std::sort(v.begin(), v.end(),
              [](const SeenClass& a, const SeenClass& b) { return a.key < b.key; });
    return v;
  };
  EXPECT_EQ(byKey(classes), byKey(expected));
}

TEST(ClassResults, ClearLinksKeepsEntryDomain) {
  OrvWebPageUrls urls;
  AddFiveLinks(urls);
  urls.ClassifyUrls();
  ASSERT_EQ(urls.GetClassCount(), 4);
  urls.ClearLinks();
  EXPECT_EQ(urls.GetClassCount(), 0);
  EXPECT_EQ(urls.ClassifyUrls(), 1);
  EXPECT_EQ(urls.GetClassCount(), 0) << "no link survives ClearLinks";

  urls.AddLink(Orv("http://www.site.test/p.htm"), Orv(""), Tag(1));
  urls.AddLink(Orv("http://elsewhere.test/p.htm"), Orv(""), Tag(2));
  urls.ClassifyUrls();
  auto classes = ReadClasses(urls);
  ASSERT_EQ(classes.size(), 2u);
  std::set<std::string> keys = {classes[0].key, classes[1].key};
  EXPECT_EQ(keys, (std::set<std::string>{R"(\$;;/)" + kPageFamily + ";^?",
                                         R"(^\$;;/)" + kPageFamily + ";^?"}));
}

// A later SetEntryUrl replaces the domain; it may come after the links.
TEST(ClassResults, EntryUrlCountsOnlyAtClassification) {
  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv("http://www.first.test/"));
  urls.AddLink(Orv("http://a.second.test/x.htm"), Orv(""), nullptr);
  urls.SetEntryUrl(Orv("http://www.second.test/"));
  urls.ClassifyUrls();
  auto classes = ReadClasses(urls);
  ASSERT_EQ(classes.size(), 1u);
  EXPECT_EQ(classes[0].key, R"(\$;;/)" + kPageFamily + ";^?");
}

// Copies share one set of parts; whichever goes last frees it.
TEST(ClassResults, CopiesShareAndOutliveEachOther) {
  auto expected = [] {
    OrvWebPageUrls urls;
    AddFiveLinks(urls);
    urls.ClassifyUrls();
    return ReadClasses(urls);
  }();

  {
    auto* a = new OrvWebPageUrls;
    AddFiveLinks(*a);
    OrvWebPageUrls b(*a);
    b.ClassifyUrls();
    EXPECT_EQ(ReadClasses(*a), expected);
    delete a;
    EXPECT_EQ(ReadClasses(b), expected);
  }
  {
    OrvWebPageUrls a, c;
    c.AddLink(Orv("http://x.test/old"), Orv(""), nullptr);  // c's own parts go at the assignment
    AddFiveLinks(a);
    c = a;
    c = c;
    a = c;
    a.ClassifyUrls();
    EXPECT_EQ(ReadClasses(c), expected);
    {
      OrvWebPageUrls d;
      d = a;
      a = OrvWebPageUrls();  // a leaves the set; c and d still hold it
      EXPECT_EQ(a.GetClassCount(), 0);
      EXPECT_EQ(ReadClasses(d), expected);
    }
    EXPECT_EQ(ReadClasses(c), expected);
    c.ClearLinks();
    EXPECT_EQ(c.GetClassCount(), 0);
  }
}

// Long URLs take no stack that grows with them, and their keys are whole.
TEST(ClassResults, HugeLinksClassify) {
  std::string deep = "http://web.site.test/";
  for (int i = 0; i < 100000; i++) deep += "d/";
  deep += "x.htm?";
  std::vector<std::string> names;
  for (int i = 0; i < 100000; i++) {
    names.push_back("p" + std::to_string((i * 7919) % 977));
    deep += names.back() + "=1&";
  }
  std::sort(names.begin(), names.end());
  std::string expectedKey = R"(\$;)";
  for (int i = 0; i < 100000; i++) expectedKey += R"(/\s)";
  expectedKey += ";/" + kPageFamily + ";?";
  for (size_t i = 0; i < names.size(); i++) expectedKey += (i ? ";&" : "") + names[i];

  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv(kEntry));
  urls.AddLink(Orv(deep), Orv(""), Tag(1));
  urls.AddLink(Orv(std::string(1 << 20, '/')), Orv(""), Tag(2));
  urls.AddLink(Orv(deep), Orv(""), Tag(3));
  urls.AddLink(Orv(std::string(1 << 20, 'x')), Orv(""), Tag(4));
  urls.ClassifyUrls();
  auto classes = ReadClasses(urls);
  ASSERT_EQ(classes.size(), 3u);
  size_t total = 0;
  for (const auto& c : classes) total += c.links.size();
  EXPECT_EQ(total, 4u);
  bool deepSeen = false;
  for (const auto& c : classes)
    if (c.key == expectedKey) {
      deepSeen = true;
      ASSERT_EQ(c.links.size(), 2u);
      EXPECT_EQ(c.links[0].userData, Tag(1));
      EXPECT_EQ(c.links[1].userData, Tag(3));
    }
  EXPECT_TRUE(deepSeen);
}

}  // namespace
