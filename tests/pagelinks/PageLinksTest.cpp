#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvPageLinks.h"
#include "support/Cases.h"

namespace {

std::string Str(const OrvString& s) { return std::string(s.buf ? s.buf : "", size_t(s.len)); }

TEST(PageLinks, ResolveCases) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/pagelinks/resolve.tsv", 3, true)) {
    OrvString out("stale", 5);
    int ok = OrvResolveUrl(c[0].data(), long(c[0].size()), c[1].data(), long(c[1].size()), out);
    EXPECT_EQ(ok, c[2].empty() ? 0 : 1) << c[0] << " + " << c[1];
    EXPECT_EQ(Str(out), c[2]) << c[0] << " + " << c[1];
  }
  // NUL-terminated texts as well as counted ones.
  OrvString out;
  EXPECT_EQ(OrvResolveUrl("http://a.test/b/c", -1, "../d", -1, out), 1);
  EXPECT_EQ(Str(out), "http://a.test/d");
  EXPECT_EQ(OrvResolveUrl(nullptr, -1, nullptr, -1, out), 0);
  EXPECT_EQ(Str(out), "");
}

TEST(PageLinks, PageCases) {
  OrvPageLinks links;  // one reader for all pages: each read replaces the last
  for (const auto& c : ReadCases(ORV_CASES_DIR "/pagelinks/pages.tsv", 3, true)) {
    std::string page = c[1];
    OrvHtml doc;
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0) << page;
    EXPECT_EQ(links.Read(doc.root, c[0].data(), long(c[0].size())), 1);
    EXPECT_EQ(links.HasBase(), std::stoi(c[2])) << page;
    std::vector<std::string> seen;
    OrvString url, label;
    for (int i = 0; i < links.GetCount(); i++) {
      EXPECT_EQ(links.Get(i, url, label), 1);
      seen.push_back(Str(url));
      seen.push_back(Str(label));
    }
    EXPECT_EQ(seen, std::vector<std::string>(c.begin() + 3, c.end())) << page;
    EXPECT_EQ(links.Get(links.GetCount(), url, label), 0);
    EXPECT_EQ(Str(url) + Str(label), "");
    // Take gives the same texts and leaves none behind.
    std::vector<std::string> taken;
    for (int i = 0; i < links.GetCount(); i++) {
      EXPECT_EQ(links.Take(i, url, label), 1);
      taken.push_back(Str(url));
      taken.push_back(Str(label));
      links.Get(i, url, label);
      EXPECT_EQ(Str(url) + Str(label), "");
    }
    EXPECT_EQ(taken, seen) << page;
    url = OrvString("stale", 5);
    EXPECT_EQ(links.Take(links.GetCount(), url, label), 0);
    EXPECT_EQ(Str(url) + Str(label), "");
  }
}

}  // namespace
