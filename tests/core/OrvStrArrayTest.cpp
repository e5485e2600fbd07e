#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"

namespace {

// The pieces as seen through the public fields, the way library code reads them.
std::vector<std::string> Pieces(const OrvStrArray& a) {
  std::vector<std::string> out;
  for (int32_t i = 0; i < a.count; i++) {
    const char* p = a.buf + a.offsets[i];
    EXPECT_EQ(a[i], p);
    EXPECT_EQ(a.GetStringLen(i), long(std::string(p).size()));
    out.emplace_back(p);
  }
  return out;
}

TEST(OrvStrArray, Split) {
  struct Case {
    const char* text;
    char sep;
    std::vector<std::string> want;
  };
  const std::vector<Case> cases = {
      {"", '&', {}},
      {nullptr, '&', {}},
      {"a=1", '&', {"a=1"}},
      {"a=1&b=2", '&', {"a=1", "b=2"}},
      {"a=1&&b=2", '&', {"a=1", "", "b=2"}},
      {"&", '&', {"", ""}},
      {"&a&", '&', {"", "a", ""}},
      {"=v", '=', {"", "v"}},
      {"a=b=c", '=', {"a", "b", "c"}},
      {"no separator", '=', {"no separator"}},
  };
  OrvStrArray reused;
  for (const auto& c : cases) {
    std::string where = c.text ? c.text : "(null)";
    OrvStrArray fresh;
    fresh.Split(c.text, c.sep);
    EXPECT_EQ(fresh.count, int32_t(c.want.size())) << where;
    EXPECT_EQ(Pieces(fresh), c.want) << where;
    // The same array split again holds only the newest pieces.
    reused.Split("left&over&from&before&x&y&z", '&');
    reused.Split(c.text, c.sep);
    EXPECT_EQ(Pieces(reused), c.want) << where;
  }
}

TEST(OrvStrArray, AddGetAndCopy) {
  OrvStrArray a;
  EXPECT_EQ(a.count, 0);
  EXPECT_EQ(a.GetStringLen(-1), -1);
  EXPECT_EQ(a.GetStringLen(0), -1);
  const char* path = "dir/sub/file";
  a.AddString(path, 3);  // out of the middle of a longer text
  a.AddString(path + 4, 3);
  a.AddString("", -1);
  a.AddString(nullptr, 0);
  a.AddString("tail", -1);
  EXPECT_EQ(Pieces(a), (std::vector<std::string>{"dir", "sub", "", "", "tail"}));
  EXPECT_EQ(a.GetStringLen(a.count), -1);
  for (int i = 0; i < 200; i++) a.AddString(a[i % 2], -1);  // own elements, storage moves
  EXPECT_EQ(a.count, 205);
  EXPECT_STREQ(a[204], "sub");

  OrvString s("old text", -1);
  EXPECT_EQ(a.GetString(1, s), 1);
  EXPECT_EQ(std::string(s.buf, s.len), "sub");
  EXPECT_EQ(a.GetString(2, s), 1);
  ASSERT_NE(s.buf, nullptr);
  EXPECT_EQ(s.len, 0);
  EXPECT_EQ(s.buf[0], '\0');

  OrvStrArray b;
  b.Split("x&y", '&');
  b = a;
  EXPECT_EQ(Pieces(b), Pieces(a));
  a.RemoveAll(0);
  EXPECT_EQ(a.count, 0);
  EXPECT_EQ(b.count, 205);  // the copy stands alone
  EXPECT_STREQ(b[0], "dir");
  OrvStrArray c(b);
  b.Split("q", '&');
  EXPECT_EQ(c.count, 205);

  // Splitting one of the array's own elements.
  OrvStrArray d;
  d.AddString("k=v", -1);
  d.Split(d[0], '=');
  EXPECT_EQ(Pieces(d), (std::vector<std::string>{"k", "v"}));
}

}  // namespace
