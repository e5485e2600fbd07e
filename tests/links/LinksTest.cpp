#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <set>

#include "orvwebpage/OrvWebPageUrls.h"
#include "url/UrlTestSupport.h"

namespace {

OrvString Orv(const std::string& s) { return OrvString(s.data(), long(s.size())); }
void* Tag(intptr_t n) { return reinterpret_cast<void*>(n); }

// Link n (from 1) goes in with the label "n" and the value n.
void Add(OrvWebPageUrls& urls, const std::vector<std::string>& links, size_t from = 0) {
  for (size_t i = from; i < links.size(); i++)
    EXPECT_EQ(urls.AddLink(Orv(links[i]), Orv(std::to_string(i + 1)), Tag(intptr_t(i + 1))), 1);
}

// Each class as "key n,m", n and m the numbers of its links. One key string serves
// every read, so a read must replace what it held.
std::vector<std::string> Classes(OrvWebPageUrls& urls, const std::vector<std::string>& links) {
  std::vector<std::string> classes;
  OrvString key, url, label;
  for (int c = 0; c < urls.GetClassCount(); c++) {
    void* handle = urls.FetchClass(c);
    EXPECT_EQ(urls.GetClassKeyStr(handle, key), 1);
    std::string seen = Str(key);
    for (int i = 0; i < urls.GetUrlCount(handle); i++) {
      void* value = nullptr;
      EXPECT_EQ(urls.FetchUrl(handle, i, url, label, value), 1);
      size_t n = std::stoul(Str(label));
      EXPECT_EQ(value, Tag(intptr_t(n)));
      // The stored URL is the text as given, trimmed.
      const std::string& link = links.at(n - 1);
      size_t first = link.find_first_not_of(" \t"), last = link.find_last_not_of(" \t");
      EXPECT_EQ(Str(url), link.substr(first, last + 1 - first));
      seen += (i ? "," : " ") + Str(label);
    }
    classes.push_back(seen);
  }
  return classes;
}

// The entry URL counts at classification: one set before the links is replaced.
TEST(Links, ClassCases) {
  int row = 0;
  for (const auto& c : ReadCases(ORV_CASES_DIR "/links/classes.tsv")) {
    ASSERT_GE(c.size(), 2u);
    OrvWebPageUrls urls;
    EXPECT_EQ(urls.SetEntryUrl(Orv("http://www.decoy.test/")), 1);
    if (++row % 2) urls.EnableUrlFilterExtractor(uint8_t(row));  // changes nothing
    std::vector<std::string> links;
    std::istringstream words(c[1]);
    for (std::string link; words >> link;) links.push_back(Unescape(link));
    Add(urls, links);
    EXPECT_EQ(urls.SetEntryUrl(Orv(c[0])), 1);
    EXPECT_EQ(urls.ClassifyUrls(), 1);
    EXPECT_EQ(Classes(urls, links), std::vector<std::string>(c.begin() + 2, c.end())) << c[1];
  }
}

// Every read outside the classes answers 0 and leaves its outputs as they were.
TEST(Links, ReadsOutOfRangeAndClearLinks) {
  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv("http://www.site.test/"));
  const std::vector<std::string> links = {"http://site.test/a/1.htm", "http://site.test/a/2.htm",
                                          "http://other.test/"};
  Add(urls, links);
  auto probe = [&urls](int handle, int index) {
    OrvString key("old", -1), url("old", -1), label("old", -1);
    void* value = Tag(77);
    bool classOut = handle < 0 || handle >= urls.GetClassCount();
    EXPECT_EQ(urls.GetClassKeyStr(urls.FetchClass(handle), key), classOut ? 0 : 1) << handle;
    EXPECT_EQ(urls.GetUrlCount(urls.FetchClass(handle)) == 0, classOut) << handle;
    EXPECT_EQ(urls.FetchUrl(urls.FetchClass(handle), index, url, label, value), 0) << handle;
    EXPECT_EQ(Str(url) + Str(label) + (classOut ? Str(key) : "old"), "oldoldold") << handle;
    EXPECT_EQ(value, Tag(77)) << handle << " " << index;
  };
  const int handles[][2] = {{0, 0}, {1, 0}, {-1, 0}, {2, 0}, {INT_MIN, 0}, {INT_MAX, 0}};
  for (const auto& [handle, index] : handles) probe(handle, index);  // nothing classified yet
  urls.ClassifyUrls();
  const int indexes[][2] = {{-1, 0}, {2, 0}, {1000, 0}, {INT_MIN, 0}, {INT_MAX, 0},
                            {1, -1}, {1, 2}, {0, 1},    {0, INT_MIN}, {1, INT_MAX}};
  for (const auto& [handle, index] : indexes) probe(handle, index);  // class 1 holds two links
  // ClearLinks forgets links and classes and keeps the entry domain.
  urls.ClearLinks();
  for (const auto& [handle, index] : handles) probe(handle, index);
  EXPECT_EQ(urls.ClassifyUrls(), 1);
  EXPECT_EQ(urls.GetClassCount(), 0);
  Add(urls, {links[1]});
  urls.ClassifyUrls();
  EXPECT_EQ(Classes(urls, {links[1]}).at(0).substr(0, 9), R"(\$;/\s;/()");
}

// Over real links, classified in two runs with a read between them: every
// link lands in exactly one class, as in one run.
TEST(Links, RealLinksInTwoRuns) {
  std::vector<std::string> links;
  for (const auto& row : ReadCases(ORV_DATA_DIR "/links.txt")) links.push_back(row[0]);
  OrvWebPageUrls twoRuns, oneRun;
  twoRuns.SetEntryUrl(Orv("https://medium.com/"));
  oneRun.SetEntryUrl(Orv("https://medium.com/"));
  Add(oneRun, links);
  std::vector<std::string> half(links.begin(), links.begin() + long(links.size() / 2));
  Add(twoRuns, half);
  twoRuns.ClassifyUrls();
  Classes(twoRuns, half);
  Add(twoRuns, links, half.size());
  twoRuns.ClassifyUrls();
  oneRun.ClassifyUrls();
  auto classes = Classes(twoRuns, links), expected = Classes(oneRun, links);
  std::set<size_t> seen;
  for (const std::string& c : classes) {
    std::istringstream numbers(c.substr(c.rfind(' ') + 1));
    for (std::string n; std::getline(numbers, n, ',');)
      EXPECT_TRUE(seen.insert(std::stoul(n)).second) << c;
  }
  EXPECT_EQ(seen.size(), links.size());
  // Only the order of classes may differ.
  std::sort(classes.begin(), classes.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(classes, expected);
}

// Copies share one set of parts; whichever goes last frees it.
TEST(Links, CopiesShareAndOutliveEachOther) {
  const std::vector<std::string> links = {"http://site.test/a.htm", "http://site.test/b/c.jpg"};
  const std::vector<std::string> expected = {
      R"(test;;/(.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E);^? 1)",
      R"(test;/\s;/(.jpg\E,.png\E,.ico\E);^? 2)"};
  auto* a = new OrvWebPageUrls;
  OrvWebPageUrls b(*a), c, d;
  c.AddLink(Orv("http://x.test/old"), Orv(""), nullptr);  // c's own parts go at the assignment
  c = b;
  c = c;
  a->AddLink(Orv(links[0]), Orv("1"), Tag(1));
  b.AddLink(Orv(links[1]), Orv("2"), Tag(2));
  c.ClassifyUrls();
  delete a;
  d = b;
  b = OrvWebPageUrls();  // b leaves the set; c and d still hold it
  EXPECT_EQ(b.GetClassCount(), 0);
  EXPECT_EQ(Classes(d, links), expected);
  c.ClearLinks();
  EXPECT_EQ(d.GetClassCount(), 0);
}

// Long URLs take no stack that grows with them, and their keys are whole.
TEST(Links, HugeLinks) {
  std::string deep = "http://web.site.test/", key = R"(\$;)";
  for (int i = 0; i < 100000; i++) deep += "d/", key += R"(/\s)";
  deep += "x.htm?";
  key += R"(;/(.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E);?)";
  std::vector<std::string> names;
  for (int i = 0; i < 100000; i++) {
    names.push_back("p" + std::to_string((i * 7919) % 977));
    deep += names.back() + "=1&";
  }
  std::sort(names.begin(), names.end());
  for (size_t i = 0; i < names.size(); i++) key += (i ? ";&" : "") + names[i];
  const std::vector<std::string> links = {deep, std::string(1 << 20, '/'), deep,
                                          std::string(1 << 20, 'x')};
  OrvWebPageUrls urls;
  urls.SetEntryUrl(Orv("http://www.site.test/"));
  Add(urls, links);
  urls.ClassifyUrls();
  auto classes = Classes(urls, links);
  ASSERT_EQ(classes.size(), 3u);
  EXPECT_NE(std::find(classes.begin(), classes.end(), key + " 1,3"), classes.end());
}

}  // namespace
