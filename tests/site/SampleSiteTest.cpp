#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "site/SiteTestSupport.h"

namespace {

TEST(SampleSite, EachProfileStartsOnLoopbackWithItsTrueCount) {
  struct Case {
    std::vector<std::string> args;
    long long truePages;  // what a full crawl from "/" finds; estimator tests rely on it
  };
  const std::vector<Case> cases = {
      {{"--profile", "example"}, 158}, {{"--profile", "last13"}, 14},
      {{"--profile", "fail5"}, 6},     {{"--profile", "window"}, 301},
      {{"--profile", "offset"}, 253},  {{"--profile", "nocrawl"}, 9},
      {{"--profile", "shapes"}, 8},    {{"--profile", "single"}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[1]);
    SampleSite site(c.args);
    ASSERT_TRUE(site.Ok()) << site.Error();
    EXPECT_EQ(site.TruePages(), c.truePages);
    EXPECT_EQ(site.Url().rfind("http://127.0.0.1:", 0), 0u);
    EXPECT_EQ(site.Url().back(), '/');
    EXPECT_EQ(Get(site.Url()).status, ORV_HTTP_OK);
  }
}

TEST(SampleSite, TheDefaultSiteIsLargeAndPagesScaleIt) {
  SampleSite site;
  ASSERT_TRUE(site.Ok()) << site.Error();
  EXPECT_GE(site.TruePages(), 10000);
  SampleSite small({"--pages", "1000"});
  ASSERT_TRUE(small.Ok()) << small.Error();
  EXPECT_GE(small.TruePages(), 800);
  EXPECT_LE(small.TruePages(), 1200);
}

TEST(SampleSite, PagersLinkWhatTheProfilesPromise) {
  struct Case {
    const char* profile;
    const char* path;
    std::vector<int> numbers;
  };
  const std::vector<Case> cases = {
      {"last13", "/list?page=1", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}},
      {"last13", "/list?page=13", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
      {"last13", "/list?page=100", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
      {"fail5", "/list?page=1", {2, 3, 4, 5}},
      {"fail5", "/list?page=4", {1, 2, 3, 5}},
      {"fail5", "/list?page=5", {1, 2, 3, 4}},
      {"window", "/list?page=1", {2, 3, 4}},
      {"window", "/list?page=100", {97, 98, 99, 101, 102, 103}},
      {"window", "/list?page=300", {297, 298, 299}},
      {"offset", "/list?start=0", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
      {"example", "/list?cat=1&page=1", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}},
      {"nocrawl", "/", {2, 3, 4, 5, 6, 7, 8}},
      {"nocrawl", "/list.php?page=100", {1, 2, 3, 4, 5, 6, 7}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.profile) + " " + c.path);
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    Page page = Get(site.Url(c.path));
    ASSERT_EQ(page.status, ORV_HTTP_OK);
    EXPECT_EQ(NumberLinks(page.body), c.numbers);
  }
}

TEST(SampleSite, ListingsEndAsTheirProfilesSay) {
  struct Case {
    const char* profile;
    const char* path;
    long code;
    const char* sameAs;  // non-empty: the body equals this page's
  };
  const std::vector<Case> cases = {
      {"last13", "/list?page=14", 200, "/list?page=13"},
      {"last13", "/list?page=2147483647", 200, "/list?page=13"},
      {"last13", "/list?page=0", 404, ""},
      {"last13", "/list?page=abc", 404, ""},
      {"last13", "/list?page=-3", 404, ""},
      {"last13", "/list?page=007", 404, ""},
      {"last13", "/list?page=2&page=3", 404, ""},
      {"last13", "/list?page=1&x=1", 404, ""},
      {"fail5", "/list?page=5", 200, ""},
      {"fail5", "/list?page=6", 404, ""},
      {"fail5", "/list?page=100", 404, ""},
      {"window", "/list?page=300", 200, ""},
      {"window", "/list?page=301", 404, ""},
      {"offset", "/list?start=220", 200, ""},
      {"offset", "/list?start=240", 404, ""},
      {"example", "/list?page=50&cat=1", 200, "/list?cat=1&page=13"},  // sorted parameters
      {"example", "/list?cat=10&page=1", 404, ""},
      {"example", "/article?id=41", 404, ""},
      {"shapes", "/gone?ref=1", 404, ""},
      {"shapes", "/gone?ref=2", 200, ""},
      {"single", "/anything", 404, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.profile) + " " + c.path);
    SampleSite site({"--profile", c.profile});
    ASSERT_TRUE(site.Ok()) << site.Error();
    Page page = Get(site.Url(c.path));
    EXPECT_EQ(page.code, c.code);
    EXPECT_EQ(page.status, c.code == 200 ? ORV_HTTP_OK : ORV_HTTP_NOT_2XX);
    if (*c.sameAs) {
      std::string expected = Get(site.Url(c.sameAs)).body;
      EXPECT_FALSE(expected.empty());
      EXPECT_EQ(page.body, expected);
    }
  }
}

TEST(SampleSite, SameSeedSameSiteOtherSeedOtherText) {
  const std::vector<std::string> paths = {"/",
                                          "/story?id=7",
                                          "/news?page=3",
                                          "/blog?start=40",
                                          "/shop?cat=2&page=1",
                                          "/tag?name=river",
                                          "/product?sku=5"};
  SampleSite a({"--seed", "42", "--pages", "2000"});
  SampleSite b({"--seed", "42", "--pages", "2000"});
  SampleSite c({"--seed", "43", "--pages", "2000"});
  ASSERT_TRUE(a.Ok() && b.Ok() && c.Ok()) << a.Error() << b.Error() << c.Error();
  EXPECT_EQ(a.TruePages(), b.TruePages());
  int differing = 0;
  for (const std::string& path : paths) {
    SCOPED_TRACE(path);
    Page pa = Get(a.Url(path)), pb = Get(b.Url(path)), pc = Get(c.Url(path));
    ASSERT_EQ(pa.status, ORV_HTTP_OK);
    EXPECT_EQ(pa.body, pb.body);
    differing += pa.body != pc.body;
  }
  EXPECT_GE(differing, 5);
}

TEST(SampleSite, TheLogHasOneLinePerRequestInOrder) {
  SampleSite site({"--profile", "fail5"});
  ASSERT_TRUE(site.Ok()) << site.Error();
  const std::vector<std::string> targets = {"/",
                                            "/list?page=100",
                                            "/list?page=50",
                                            "/list?page=4",
                                            "/list?page=4",
                                            "/nothing%20here?a=&b"};
  for (const std::string& target : targets) Get(site.Url(target));
  EXPECT_EQ(site.LogLines(), targets);
  site.ClearLog();
  Get(site.Url("/list?page=5"));
  EXPECT_EQ(site.LogLines(), std::vector<std::string>{"/list?page=5"});
}

TEST(SampleSite, BadOptionsAndHostileRequests) {
  SampleSite unknown({"--profile", "no-such-profile"}, 5);
  EXPECT_FALSE(unknown.Ok());
  SampleSite badPages({"--pages", "0"}, 5);
  EXPECT_FALSE(badPages.Ok());

  SampleSite site({"--profile", "example"});
  ASSERT_TRUE(site.Ok()) << site.Error();
  std::string manyParams = "/list?";
  for (int i = 0; i < 2000; ++i) manyParams += "p" + std::to_string(i) + "=1&";
  const std::vector<std::string> targets = {
      "/list?cat=%zz&page=%", "/" + std::string(4000, 'a'),       manyParams,
      "/list?=&&&=1",         "/article?id=99999999999999999999", "/%00%ff?%00=%00"};
  for (const std::string& target : targets) {
    Page page = Get(site.Url(target));
    EXPECT_NE(page.status, ORV_HTTP_OK) << target.substr(0, 60);
  }
  EXPECT_EQ(Get(site.Url("/")).status, ORV_HTTP_OK);  // still serving
}

}  // namespace
