#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"

namespace {

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, s.len) : std::string(); }

std::string Alphabet(int n) {
  std::string out;
  for (int i = 0; i < n; i++) out += char('a' + i % 26);
  return out;
}

// Every set text is NUL-terminated at a non-NULL buf.
void ExpectWellFormed(const OrvString& s, const std::string& where) {
  ASSERT_NE(s.buf, nullptr) << where;
  ASSERT_GE(s.len, 0) << where;
  EXPECT_EQ(s.buf[s.len], '\0') << where;
}

TEST(OrvString, ZeroFilledAndDefaultBehaveAlike) {
  struct Case {
    const char* name;
    std::function<void(OrvString&)> op;
    std::string want;
    bool setsText = true;  // leaves a non-NULL buf even when empty
  };
  const std::vector<Case> cases = {
      {"Clear", [](OrvString& s) { s.Clear(); }, ""},
      {"CopyBuf NULL 0", [](OrvString& s) { s.CopyBuf(nullptr, 0); }, ""},
      {"CopyBuf NULL -1", [](OrvString& s) { s.CopyBuf(nullptr, -1); }, ""},
      {"CopyBuf text", [](OrvString& s) { s.CopyBuf("abc", -1); }, "abc"},
      {"assign empty", [](OrvString& s) { s = OrvString(); }, ""},
      {"assign literal", [](OrvString& s) { s = "xy"; }, "xy"},
      {"append empty string", [](OrvString& s) { s += OrvString(); }, "", false},
      {"append char", [](OrvString& s) { s += 'q'; }, "q"},
      {"Append counted", [](OrvString& s) { s.Append("hello", 2); }, "he"},
      {"Format", [](OrvString& s) { s.Format("%d", 42); }, "42"},
      {"TrimBanks then Clear",
       [](OrvString& s) {
         s.TrimBanks();
         s.Clear();
       },
       ""},
      {"CutBefore then Clear",
       [](OrvString& s) {
         s.CutBefore(3);
         s.Clear();
       },
       ""},
  };
  for (const auto& c : cases) {
    OrvString built;
    alignas(OrvString) unsigned char raw[sizeof(OrvString)];
    std::memset(raw, 0, sizeof raw);
    OrvString& zeroed = *reinterpret_cast<OrvString*>(raw);
    EXPECT_EQ(zeroed.len, 0);
    for (OrvString* s : {&built, &zeroed}) {
      c.op(*s);
      if (c.setsText || s->buf) ExpectWellFormed(*s, c.name);
      EXPECT_EQ(Text(*s), c.want) << c.name;
    }
    EXPECT_NE(built == zeroed, 0) << c.name;
    zeroed.~OrvString();
  }
  // Reading operations on an untouched string.
  OrvString untouched;
  EXPECT_LT(untouched.Findc('a', 0), 0);
  EXPECT_LT(untouched.RightFindc('a', -1), 0);
  EXPECT_EQ(untouched.Find("", 0, 0), 0);
  EXPECT_EQ(untouched.Compare("", -1), 0);
  EXPECT_NE(untouched.Compare("a", -1), 0);
  EXPECT_NE(untouched == OrvString("", 0), 0);
  EXPECT_NE(untouched.CapsIsEqual(nullptr, 0), 0);
  OrvString copy(untouched);
  EXPECT_EQ(copy.len, 0);
}

TEST(OrvString, LengthRule) {
  const char raw[] = {'a', 'b', 'c', 'd'};  // not terminated
  struct Case {
    const char* text;
    long length;
    std::string want;
  };
  const std::vector<Case> cases = {
      {"hello", -1, "hello"}, {"hello", 3, "hel"}, {"hello", 0, ""}, {nullptr, 0, ""},
      {nullptr, -1, ""},      {raw, 4, "abcd"},    {"", -1, ""},
  };
  for (const auto& c : cases) {
    std::string where = c.want + "/" + std::to_string(c.length);
    OrvString built(c.text, c.length);
    ExpectWellFormed(built, where);
    EXPECT_EQ(Text(built), c.want) << where;
    OrvString copied;
    copied = "old text that is longer";
    copied.CopyBuf(c.text, c.length);
    ExpectWellFormed(copied, where);
    EXPECT_EQ(Text(copied), c.want) << where;
    OrvString appended("x", -1);
    appended.Append(c.text, c.length);
    ExpectWellFormed(appended, where);
    EXPECT_EQ(Text(appended), "x" + c.want) << where;
  }
}

TEST(OrvString, InPlaceEdits) {
  struct Case {
    const char* name;
    std::string in;
    std::function<void(OrvString&)> op;
    std::string want;
  };
  const std::vector<Case> cases = {
      {"trim both", " \t\r\n\f\vab c\v\f\n\r\t ", [](OrvString& s) { s.TrimBanks(); }, "ab c"},
      {"trim only blanks", " \t \n", [](OrvString& s) { s.TrimBanks(); }, ""},
      {"trim keeps NBSP", "\xa0x\xa0", [](OrvString& s) { s.TrimBanks(); }, "\xa0x\xa0"},
      {"decode", "a%20b%2Fc", [](OrvString& s) { s.ChangeToChar(); }, "a b/c"},
      {"decode mixed case hex", "%4a%4A", [](OrvString& s) { s.ChangeToChar(); }, "JJ"},
      {"malformed percent stays", "%zz%4%", [](OrvString& s) { s.ChangeToChar(); }, "%zz%4%"},
      {"percent at end", "a%4", [](OrvString& s) { s.ChangeToChar(); }, "a%4"},
      {"plus stays", "a+b", [](OrvString& s) { s.ChangeToChar(); }, "a+b"},
      {"decoded percent not decoded again", "%2541", [](OrvString& s) { s.ChangeToChar(); }, "%41"},
      {"decode to NUL byte", "a%00b", [](OrvString& s) { s.ChangeToChar(); },
       std::string("a\0b", 3)},
      {"Cutlen 0", "abc", [](OrvString& s) { s.Cutlen(0); }, ""},
      {"Cutlen middle", "abc", [](OrvString& s) { s.Cutlen(2); }, "ab"},
      {"Cutlen len", "abc", [](OrvString& s) { s.Cutlen(3); }, "abc"},
      {"CutBefore 1", "abc", [](OrvString& s) { s.CutBefore(1); }, "bc"},
      {"CutBefore len", "abc", [](OrvString& s) { s.CutBefore(3); }, ""},
      {"replace shorter", "a&amp;b&amp;&amp;c",
       [](OrvString& s) { s.ReplaceAll("&amp;", 5, "&", 1); }, "a&b&&c"},
      {"replace left to right", "aaa", [](OrvString& s) { s.ReplaceAll("aa", 2, "b", 1); }, "ba"},
      {"replace longer", "x.y.", [](OrvString& s) { s.ReplaceAll(".", 1, "<.>", 3); }, "x<.>y<.>"},
      {"replace to nothing", "abab", [](OrvString& s) { s.ReplaceAll("b", 1, "", 0); }, "aa"},
      {"replace absent", "abc", [](OrvString& s) { s.ReplaceAll("&amp;", 5, "&", 1); }, "abc"},
      {"replace result not rescanned", "&amp;amp;",
       [](OrvString& s) { s.ReplaceAll("&amp;", 5, "&", 1); }, "&amp;"},
      {"Format replaces", "old", [](OrvString& s) { s.Format("%s;", "new"); }, "new;"},
      {"Format two", "old", [](OrvString& s) { s.Format("%s%s", "a", "b"); }, "ab"},
      {"Format NULL", "old",
       [](OrvString& s) {
         const char* volatile none = nullptr;  // opaque to the format checker
         s.Format("%s%s", none, "b");
       },
       "b"},
      {"Format int", "", [](OrvString& s) { s.Format("%d", INT_MIN); }, "-2147483648"},
      {"Format width and star", "",
       [](OrvString& s) { s.Format("[%5s|%-*d|%.2f%%]", "ab", 3, 7, 1.5); }, "[   ab|7  |1.50%]"},
      {"Format own text", "self", [](OrvString& s) { s.Format("%s+%s", s.buf, s.buf); },
       "self+self"},
      {"append own text", "ab",
       [](OrvString& s) {
         s.Append(s.buf, s.len);
         s.Append(s.buf, -1);
       },
       "abababab"},
      {"copy own tail", "abcdef", [](OrvString& s) { s.CopyBuf(s.buf + 2, -1); }, "cdef"},
      {"long append", "",
       [](OrvString& s) {
         for (int i = 0; i < 1000; i++) s += char('a' + i % 26);
       },
       Alphabet(1000)},
  };
  for (const auto& c : cases) {
    OrvString s(c.in.data(), long(c.in.size()));
    c.op(s);
    ExpectWellFormed(s, c.name);
    EXPECT_EQ(Text(s), c.want) << c.name;
  }
}

TEST(OrvString, Searches) {
  struct Case {
    std::string hay;
    const char* op;  // "find", "findc", "rfindc"
    std::string needle;
    long from;
    int want;
  };
  const std::vector<Case> cases = {
      {"abcabc", "find", "bc", 0, 1},
      {"abcabc", "find", "bc", 2, 4},
      {"abcabc", "find", "cab", 0, 2},
      {"abcabc", "find", "abcabcx", 0, -1},
      {"abcabc", "find", "", 0, 0},
      {"", "find", "", 0, 0},
      {"aab", "find", "ab", 0, 1},
      {"abc", "find", "c", 3, -1},
      {std::string("a\0b", 3), "find", "b", 0, 2},
      {"a?b?c", "findc", "?", 0, 1},
      {"?ab", "findc", "?", 0, 0},
      {"abc", "findc", "z", 0, -1},
      {"", "findc", "a", 0, -1},
      {"a#b#c", "rfindc", "#", -1, 3},
      {"#abc", "rfindc", "#", -1, 0},
      {"abc", "rfindc", "z", -1, -1},
      {"", "rfindc", ".", -1, -1},
      {"a.b.c", "rfindc", ".", 2, 1},
      {"\xff.\xff", "rfindc", "\xff", -1, 2},
  };
  for (const auto& c : cases) {
    OrvString s(c.hay.data(), long(c.hay.size()));
    int got = -2;
    std::string op = c.op;
    if (op == "find") got = s.Find(c.needle.data(), long(c.needle.size()), c.from);
    if (op == "findc") got = s.Findc(c.needle[0], c.from);
    if (op == "rfindc") got = s.RightFindc(c.needle[0], c.from);
    if (c.want < 0)
      EXPECT_LT(got, 0) << op << " " << c.hay << " " << c.needle;
    else
      EXPECT_EQ(got, c.want) << op << " " << c.hay << " " << c.needle;
  }
}

TEST(OrvString, Comparisons) {
  struct Case {
    std::string a, b;
    bool equal, caseEqual;
  };
  const std::vector<Case> cases = {
      {"abc", "abc", true, true},
      {"abc", "ABC", false, true},
      {"abc", "abd", false, false},
      {"abc", "ab", false, false},
      {"", "", true, true},
      {"a[", "A{", false, false},      // '[' and '{' differ by 32
      {"\xe9", "\xc9", false, false},  // no folding above ASCII
      {"JavaScript", "javascript", false, true},
      {std::string("a\0b", 3), std::string("a\0c", 3), false, false},
  };
  for (const auto& c : cases) {
    OrvString a(c.a.data(), long(c.a.size())), b(c.b.data(), long(c.b.size()));
    EXPECT_EQ((a == b) != 0, c.equal) << c.a << " == " << c.b;
    EXPECT_EQ(a.Compare(c.b.data(), long(c.b.size())) == 0, c.equal) << c.a << " cmp " << c.b;
    EXPECT_EQ(a.CapsIsEqual(c.b.data(), long(c.b.size())) != 0, c.caseEqual) << c.a << " ~ " << c.b;
  }
  // Compare with -1 measures the other text.
  OrvString x("abc", -1);
  EXPECT_EQ(x.Compare("abc", -1), 0);
  EXPECT_NE(x.Compare("abcd", -1), 0);
}

TEST(OrvString, ValueSemantics) {
  OrvString a("shared?", -1);
  OrvString b(a);
  OrvString c;
  c = a;
  b.Cutlen(3);
  c += "!";
  EXPECT_EQ(Text(a), "shared?");
  EXPECT_EQ(Text(b), "sha");
  EXPECT_EQ(Text(c), "shared?!");
  EXPECT_NE(a.buf, b.buf);
  a = a;  // self-assignment keeps the text
  EXPECT_EQ(Text(a), "shared?");
  OrvString moved(static_cast<OrvString&&>(c));
  EXPECT_EQ(Text(moved), "shared?!");
  EXPECT_EQ(c.len, 0);
}

TEST(OrvAtoInt, Reads) {
  struct Case {
    std::string text;
    long length;  // -2: whole std::string
    long want;
  };
  const std::vector<Case> cases = {
      {"123", -2, 123},
      {"  \t-42x", -2, -42},
      {"+7", -2, 7},
      {"1,234,567", -2, 1234567},
      {"1,,2", -2, 1},
      {",5", -2, 0},
      {"12,", -2, 12},
      {"1 2", -2, 1},
      {"", -2, 0},
      {"abc", -2, 0},
      {"-", -2, 0},
      {"- 5", -2, 0},
      {"\n5", -2, 0},
      {"2147483647", -2, 2147483647},
      {"2147483648", -2, 2147483647},
      {"-2147483648", -2, -2147483648L},
      {"-99999999999999999999", -2, -2147483648L},
      {"12345", 3, 123},
      {"1,234", 2, 1},  // comma at the end of the counted text
      {"42", -1, 42},
  };
  for (const auto& c : cases) {
    long length = c.length == -2 ? long(c.text.size()) : c.length;
    EXPECT_EQ(OrvAtoInt(c.text.c_str(), length), c.want) << c.text << "/" << c.length;
  }
  // The counted text is read no further than its length.
  const char unterminated[] = {'9', '9'};
  EXPECT_EQ(OrvAtoInt(unterminated, 2), 99);
}

TEST(OrvByteRoutines, MemcmpIsUnsignedAndMemcpyCopies) {
  struct Case {
    std::string a, b;
    long n;
    int sign;
  };
  const std::vector<Case> cases = {
      {"abc", "abd", 3, -1},  {"abd", "abc", 3, 1},    {"abc", "abd", 2, 0},
      {"\x80", "\x7f", 1, 1}, {"\x01", "\xff", 1, -1}, {"x", "y", 0, 0},
  };
  for (const auto& c : cases) {
    int got = Orvmemcmp(c.a.data(), c.b.data(), c.n);
    EXPECT_EQ((got > 0) - (got < 0), c.sign) << c.a << " vs " << c.b;
  }
  EXPECT_EQ(Orvmemcmp(nullptr, nullptr, 0), 0);
  char to[4] = {0};
  Orvmemcpy(to, "xyz", 3);
  EXPECT_STREQ(to, "xyz");
  EXPECT_EQ(Orvstrlen("abc"), 3);
  EXPECT_EQ(Orvstrlen(""), 0);
}

}  // namespace
