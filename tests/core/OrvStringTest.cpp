#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "core/Cases.h"
#include "core/OrvPtrList.h"
#include "orvwebpage/OrvString.h"

namespace {

using S = OrvString;

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, s.len) : "(null)"; }

// Records make their empty strings by zero-filling them; that must act like the default.
struct ZeroFilled {
  alignas(OrvString) unsigned char raw[sizeof(OrvString)] = {};
  OrvString& s = *std::launder(reinterpret_cast<OrvString*>(raw));
  ~ZeroFilled() { s.~OrvString(); }
};

// An edit of a case file: a is a text ("(null)" for NULL) or a number, b a
// length (empty: a's size) or a second text.
void Edit(OrvString& s, const std::string& op, const std::string& a, const std::string& b) {
  const char* text = a == "(null)" ? nullptr : a.data();
  const long n = op == "Replace" || b.empty() ? long(a.size()) : std::stol(b);
  if (op == "Built") s = OrvString(text, n);
  if (op == "CopyBuf") s.CopyBuf(text, n);
  if (op == "Append") s.Append(text, n);
  if (op == "Assign") s = text;
  if (op == "Clear") s.Clear();
  if (op == "TrimBanks") s.TrimBanks();
  if (op == "ChangeToChar") s.ChangeToChar();
  if (op == "Cutlen") s.Cutlen(std::stol(a));
  if (op == "CutBefore") s.CutBefore(std::stol(a));
  if (op == "Replace") s.ReplaceAll(text, n, b.data(), long(b.size()));
  if (op == "Split") {         // the pieces, each behind a '|'
    static OrvStrArray array;  // split again and again: only the newest pieces remain
    array.Split("left&over&from&before", '&');
    array.Split(s.buf, a[0]);
    std::string pieces;
    for (int32_t i = 0; i < array.count; i++)
      pieces += "|" + std::string(array.buf + array.offsets[i], size_t(array.GetStringLen(i)));
    s = pieces.c_str();
  }
}

TEST(OrvString, Edits) {
  const char* volatile none = nullptr;  // opaque to the format checker
  const char* volatile odd = "%y %";
  struct Row {
    std::string in;
    std::function<void(OrvString&)> op;
    std::string want;
  };
  std::vector<Row> rows = {
      {"", [](S& s) { s.Format("%d", INT_MIN); }, "-2147483648"},
      {"old", [](S& s) { s.Format("%s;", "new"); }, "new;"},
      {"old", [&](S& s) { s.Format("%s%s", none, "b"); }, "b"},
      {"", [](S& s) { s.Format("[%5s|%-*d|%.2f%%]", "ab", 3, 7, 1.5); }, "[   ab|7  |1.50%]"},
      {"", [](S& s) { s.Format("%ld %lld %ls %hhd", 5L, 6LL, L"w", 300); }, "5 6 w 44"},
      {"", [&](S& s) { s.Format(odd); }, "%y %"},
      {"self", [](S& s) { s.Format("%s+%s", s.buf, s.buf); }, "self+self"},
      {"ab", [](S& s) { s.Append(s.buf, s.len), s.Append(s.buf, -1); }, "abababab"},
      {"abcdef", [](S& s) { s.CopyBuf(s.buf + 2, -1); }, "cdef"},
      {"",
       [](S& s) {
         for (int i = 0; i < 999; i++) s += char('0' + i % 10);
       },
       ""},
  };
  for (int i = 0; i < 999; i++) rows.back().want += char('0' + i % 10);
  for (const auto& c : Cases("string-edits.tsv"))
    rows.push_back({c[0], [c](S& s) { Edit(s, c[1], c[2], c[3]); }, c[4]});
  for (const Row& r : rows) {
    ZeroFilled zero;
    OrvString built(r.in.data(), long(r.in.size()));
    for (OrvString* s : {&built, &zero.s}) {
      if (s == &zero.s && !r.in.empty()) continue;
      r.op(*s);
      ASSERT_NE(s->buf, nullptr) << r.in;
      EXPECT_EQ(s->buf[s->len], '\0') << r.in;
      EXPECT_EQ(Text(*s), r.want) << r.in << " " << (s == &built ? "built" : "zero-filled");
    }
  }
}

// Found indices, -1 for none; Equal gives ==, Compare and CapsIsEqual as three digits.
long Query(const OrvString& s, const std::string& op, const std::string& arg, long n) {
  const char* a = arg.data();
  const long size = long(arg.size());
  if (op == "Equal")
    return 100 * ((s == OrvString(a, size)) != 0) + 10 * (s.Compare(a, size) == 0) +
           (s.CapsIsEqual(a, size) != 0);
  if (op == "OrvAtoInt") return OrvAtoInt(s.buf, n);
  if (op == "Orvmemcmp") return (Orvmemcmp(s.buf, a, n) > 0) - (Orvmemcmp(s.buf, a, n) < 0);
  long got = op == "Find"    ? s.Find(a, size, n)
             : op == "Findc" ? s.Findc(a[0], n)
                             : s.RightFindc(a[0], n);
  return got < 0 ? -1 : got;
}

TEST(OrvString, Queries) {
  for (const auto& c : Cases("string-queries.tsv")) {
    ZeroFilled zero;
    OrvString built(c[0].data(), long(c[0].size()));
    for (OrvString* s : {&built, &zero.s}) {
      if (s == &zero.s && !c[0].empty()) continue;
      EXPECT_EQ(Query(*s, c[1], c[2], std::stol(c[3])), std::stol(c[4])) << c[0] << " " << c[1];
    }
  }
  EXPECT_EQ(Orvstrlen("abc") + Orvstrlen(""), 3);
}

// Copies of strings, arrays and lists never share what they hold.
TEST(Copies, StandAlone) {
  OrvString s("shared", -1), b(s), c, m;
  c = s, b.Cutlen(3), c += "!", s = s, m = static_cast<S&&>(c);
  EXPECT_EQ(Text(s) + Text(b) + Text(m) + std::to_string(c.len), "sharedshashared!0");

  OrvStrArray a, copied;
  const char* path = "dir/sub/file";
  a.AddString(path, 3);  // out of the middle of a longer text
  a.AddString(path + 4, 3);
  for (int i = 0; i < 200; i++) a.AddString(a[i % 2], -1);  // its own elements while they move
  EXPECT_EQ(a.GetString(1, s), 1);
  copied.Split("x&y", '&');
  copied = a;
  OrvStrArray constructed(copied);
  a.RemoveAll(0);
  copied.Split("q", '&');
  EXPECT_EQ(a.count + copied.count + constructed.count, 203);
  EXPECT_STREQ(constructed[200], "dir");
  EXPECT_STREQ(constructed[201], "sub");
  EXPECT_EQ(Text(s), "sub");
  EXPECT_EQ(constructed.GetStringLen(-1) + constructed.GetStringLen(202), -2);

  static char cells[8];
  OrvPtrList list, listCopy;
  list.Add(&cells[0]);
  listCopy = list;
  list.items[0] = &cells[1];
  EXPECT_EQ(listCopy.items[0], &cells[0]);
}

}  // namespace
