#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "UrlTestSupport.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

struct Row {
  std::string text;
  int sort;
  const char *scheme, *host, *dirs, *stem, *ext, *params, *rebuilt;
};

// The parse table, one row per URL, with sorting unless the row says 0.
const std::vector<Row> kRows = {
    {"http://h.test", 1, "http", "h.test", "", "", "", "", "http://h.test/"},
    {"http://h.test/x/y/z.html?b=2&a=1#top", 1, "http", "h.test", "x,y", "z", "html", "a=1&b=2",
     "http://h.test/x/y/z.html?a=1&b=2"},
    {"/x/y.html", 1, "", "", "x", "y", "html", "", "/x/y.html"},
    {"x/y.html", 1, "", "x", "", "y", "html", "", "//x/y.html"},
    {"y.html", 1, "", "y.html", "", "", "", "", "//y.html/"},
    {"h", 1, "", "", "", "h", "", "", "/h"},
    {"http://h.test/a//b/c.htm", 1, "http", "h.test", "a,b", "c", "htm", "",
     "http://h.test/a/b/c.htm"},
    {"http://h.test/a/b/", 1, "http", "h.test", "a,b", "", "", "", "http://h.test/a/b/"},
    {"http://h.test?a=1", 1, "http", "h.test?a=1", "", "", "", "", "http://h.test?a=1/"},
    {"http://h.test/?a=1", 1, "http", "h.test", "", "?a=1", "", "", "http://h.test/?a=1"},
    {"http://h.test/p?x=1&amp;y=2", 1, "http", "h.test", "", "p", "", "x=1&y=2",
     "http://h.test/p?x=1&y=2"},
    {"http://h.test/a#b#c", 1, "http", "h.test", "", "a#b", "", "", "http://h.test/a#b"},
    {"http://h.test:80/", 1, "http", "h.test:80", "", "", "", "", "http://h.test:80/"},
    {"longe.test:80/x/y", 1, "longe.test", "80", "x", "y", "", "", "longe.test://80/x/y"},
    {"longer.test:80/x/y", 1, "", "longer.test:80", "x", "y", "", "", "//longer.test:80/x/y"},
    {"http://h.test/p?b=1&a=1&a=2", 1, "http", "h.test", "", "p", "", "a=2&a=1&b=1",
     "http://h.test/p?a=2&a=1&b=1"},
    {"http:", 1, "http", "", "", "", "", "", "http:/"},
    {"", 1, "", "", "", "", "", "", "/"},
    // What the rebuilt text does to a URL.
    {" \t http://h.test/a \r\n", 1, "http", "h.test", "", "a", "", "", "http://h.test/a"},
    {"mailto:someone", 1, "mailto", "someone", "", "", "", "", "mailto://someone/"},
    {"http://h.test/.htaccess", 1, "http", "h.test", "", "", "htaccess", "", "http://h.test/"},
    {"http://h.test/a.", 1, "http", "h.test", "", "a", "", "", "http://h.test/a"},
    {"http://h.test/d.x/f.tar.gz", 1, "http", "h.test", "d.x", "f.tar", "gz", "",
     "http://h.test/d.x/f.tar.gz"},
    {"http://h.test/p?a&b=c=d", 1, "http", "h.test", "", "p", "", "a=&b=c",
     "http://h.test/p?a=&b=c"},
    {"javascript:void(0)", 1, "javascript", "void(0)", "", "", "", "", "javascript://void(0)/"},
    {"HTTP://H.Test/A.HTML", 1, "HTTP", "H.Test", "", "A", "HTML", "", "HTTP://H.Test/A.HTML"},
    // How the query splits: empty pairs add nothing, "=v" has an empty name,
    // names are decoded and values are not, ";" separates nothing.
    {"http://h.test/p?a=1&&b=2&", 1, "http", "h.test", "", "p", "", "a=1&b=2",
     "http://h.test/p?a=1&b=2"},
    {"http://h.test/p?=v", 1, "http", "h.test", "", "p", "", "=v", "http://h.test/p?=v"},
    {"http://h.test/p?", 1, "http", "h.test", "", "p", "", "", "http://h.test/p"},
    {"http://h.test/p?%62=%62&a=1", 1, "http", "h.test", "", "p", "", "a=1&b=%62",
     "http://h.test/p?a=1&b=%62"},
    {"http://h.test/p?x=1;y=2", 1, "http", "h.test", "", "p", "", "x=1;y", "http://h.test/p?x=1;y"},
    {"http://h.test/p?u=http://o.test/?q=1", 1, "http", "h.test", "", "p", "", "u=http://o.test/?q",
     "http://h.test/p?u=http://o.test/?q"},
    {"http://h.test/p?q=1#x?y=2", 1, "http", "h.test", "", "p", "", "q=1", "http://h.test/p?q=1"},
    {"#top", 1, "", "#top", "", "", "", "", "//#top/"},
    {"http://h.test/#top", 1, "http", "h.test", "", "#top", "", "", "http://h.test/#top"},
    {"?a=1", 1, "", "?a=1", "", "", "", "", "//?a=1/"},
    {"http:///x", 1, "http", "", "", "x", "", "", "http:/x"},
    {"http://", 1, "http", "", "", "", "", "", "http:/"},
    {":", 1, "", "", "", "", "", "", "/"},
    {"a/b:c", 1, "a/b", "", "", "c", "", "", "a/b:/c"},
    {"p?b=1&a=1", 0, "", "p?b=1&a=1", "", "", "", "", "//p?b=1&a=1/"},
    {"/p?b=1&a=1&c", 0, "", "", "", "p", "", "b=1&a=1&c=", "/p?b=1&a=1&c="},
    {"/p?c=3&b=2&a=1", 1, "", "", "", "p", "", "a=1&b=2&c=3", "/p?a=1&b=2&c=3"},
    {"/p?ab=1&a=2&a=3&ab=4", 1, "", "", "", "p", "", "a=3&a=2&ab=1&ab=4", "/p?a=3&a=2&ab=1&ab=4"},
    {std::string("/a\0b/c", 6), 1, "", "", "", "a", "", "", "/a"},
};

TEST(OrvWebPageUrl, ParseTable) {
  OrvWebPageUrl reused;
  for (const auto& r : kRows) {
    const std::string want = std::string(r.scheme) + " | " + r.host + " | " + r.dirs + " | " +
                             r.stem + " | " + r.ext + " | " + r.params;
    OrvWebPageUrl fresh;
    fresh.url.CopyBuf(r.text.data(), long(r.text.size()));
    fresh.Parse(uint8_t(r.sort));
    EXPECT_EQ(Summary(fresh), want) << "[" << r.text << "]";

    // A record that held a bigger URL shows nothing of it after a new Parse.
    reused.url = "ftp://old.test/d1/d2/d3/old.ext?z=1&y=2&x=3&w=4#f";
    reused.Parse(1);
    reused.url.CopyBuf(r.text.data(), long(r.text.size()));
    reused.Parse(uint8_t(r.sort));
    EXPECT_EQ(Summary(reused), want) << "reused [" << r.text << "]";

    // Parse trims the stored text and leaves it otherwise alone.
    const char* blanks = " \t\n\r\f\v";
    size_t first = r.text.find_first_not_of(blanks), last = r.text.find_last_not_of(blanks);
    EXPECT_EQ(Str(fresh.url),
              first == std::string::npos ? "" : r.text.substr(first, last - first + 1));
    fresh.Rebuild();
    EXPECT_EQ(Str(fresh.url), r.rebuilt) << "[" << r.text << "]";
    EXPECT_EQ(fresh.url.buf[fresh.url.len], '\0');
  }
}

TEST(OrvWebPageUrl, GetParamNames) {
  struct Case {
    const char* text;
    int sort;
    const char* want;
  };
  const std::vector<Case> cases = {
      {"http://h.test/x/y/z.html?b=2&a=1#top", 1, "a,b"},
      {"http://h.test/x/y/z.html?b=2&a=1#top", 0, "b,a"},
      {"http://h.test", 1, "[No Query String]"},
      {"http://h.test/p?", 1, "[No Query String]"},
      {"http://h.test/p?b=1&a=1&a=2", 1, "a,a,b"},
      {"http://h.test/p?=1&%41=2", 1, ",A"},
  };
  OrvWebPageUrl u;
  OrvString names("old", -1);
  for (const auto& c : cases) {
    u.url = c.text;
    u.Parse(uint8_t(c.sort));
    OrvWebPageUrl::GetParamNames(names, u);
    EXPECT_EQ(Str(names), c.want) << c.text << " sort " << c.sort;
  }
  // Names of a sorting parse do not depend on the order in the URL.
  OrvWebPageUrl a, b;
  OrvString na, nb;
  a.url = "/p?id=1&page=2&sort=x";
  b.url = "/p?sort=y&id=9&page=1";
  a.Parse(1);
  b.Parse(1);
  OrvWebPageUrl::GetParamNames(na, a);
  OrvWebPageUrl::GetParamNames(nb, b);
  EXPECT_NE(na == nb, 0);
}

TEST(OrvWebPageUrl, ParamStorage) {
  // Parameters grow by the array rule and a new Parse keeps the array.
  struct Case {
    int params;
    int32_t wantCapacity;
  };
  const std::vector<Case> cases = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 6}, {7, 8}, {9, 11}};
  for (const auto& c : cases) {
    OrvWebPageUrl u;
    std::string text = "/p?";
    for (int i = 0; i < c.params; i++) text += "k" + std::to_string(i) + "=v&";
    u.url = text.c_str();
    u.Parse(0);
    EXPECT_EQ(u.paramCount, c.params);
    EXPECT_EQ(u.paramCapacity, c.wantCapacity) << c.params;
    OrvUrlParam* array = u.params;
    u.url = "/p";
    u.Parse(1);
    EXPECT_EQ(u.paramCount, 0);
    EXPECT_EQ(u.params, array);
    EXPECT_EQ(u.paramCapacity, c.wantCapacity);
  }

  struct AssignCase {
    int toCount, fromCount;
    bool keepsArray;
    int32_t wantCapacity;
  };
  const std::vector<AssignCase> assigns = {
      {4, 3, true, 4}, {4, 4, true, 4}, {4, 5, false, 6}, {0, 2, false, 3}, {0, 0, true, 0},
  };
  for (const auto& c : assigns) {
    OrvWebPageUrl to, from;
    std::string text = "/p?";
    for (int i = 0; i < c.toCount; i++) text += "t" + std::to_string(i) + "=&";
    to.url = text.c_str();
    to.Parse(0);
    text = "/p?";
    for (int i = 0; i < c.fromCount; i++) text += "f" + std::to_string(i) + "=x&";
    from.url = text.c_str();
    from.Parse(0);
    OrvUrlParam* before = to.params;
    OrvWebPageUrl::AssignParams(to.params, to.paramCount, to.paramCapacity, from.params,
                                from.paramCount);
    EXPECT_EQ(to.params == before, c.keepsArray) << c.toCount << "<-" << c.fromCount;
    EXPECT_EQ(to.paramCapacity, c.wantCapacity) << c.toCount << "<-" << c.fromCount;
    EXPECT_EQ(Params(to), Params(from));
  }
}

TEST(OrvWebPageUrl, CopiesStandAlone) {
  OrvWebPageUrl a;
  a.url = "http://h.test/d/e/f.html?b=2&a=1";
  a.Parse(1);
  OrvWebPageUrl b(a);
  OrvWebPageUrl c;
  c = a;
  a.url = "x";
  a.Parse(1);
  EXPECT_EQ(Summary(b), "http | h.test | d,e | f | html | a=1&b=2");
  EXPECT_EQ(Summary(c), Summary(b));
  // The estimator's use: edit a value and rebuild.
  b.params[1].value = "3";
  b.Rebuild();
  EXPECT_EQ(Str(b.url), "http://h.test/d/e/f.html?a=1&b=3");
  EXPECT_EQ(Str(c.params[1].value), "2");
}

}  // namespace
