#include <functional>
#include <new>

#include "core/Cases.h"
#include "core/OrvStrMap.h"
#include "orvwebpage/OrvString.h"

namespace {

using S = OrvString;

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, s.len) : "(null)"; }

// An operation of a case file. a is a text ("(null)" for NULL) or a number, b
// a length or index (empty: a's size) or a second text. A query leaves its
// answer as the text; an index not found reads -1.
void Apply(OrvString& s, const std::string& op, const std::string& a, const std::string& b) {
  const char* text = a == "(null)" ? nullptr : a.data();
  const long size = long(a.size()), n = op == "Replace" || b.empty() ? size : std::stol(b);
  long got = LONG_MIN;
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
  if (op == "Grow")  // one byte at a time
    for (long i = 0; i < std::stol(a); i++) s += char('0' + i % 10);
  if (op == "Find") got = std::max(s.Find(text, size, n), -1);
  if (op == "Findc") got = std::max(s.Findc(a[0], n), -1);
  if (op == "RightFindc") got = std::max(s.RightFindc(a[0], n), -1);
  if (op == "Equal")  // ==, Compare and CapsIsEqual as three digits
    got = 100 * ((s == OrvString(text, size)) != 0) + 10 * (s.Compare(text, size) == 0) +
          (s.CapsIsEqual(text, size) != 0);
  if (op == "OrvAtoInt") got = OrvAtoInt(s.buf, n);
  if (op == "Hash") got = OrvStrMap<int>::Hash(text, int32_t(n));  // of the text a
  if (op == "Orvmemcmp") got = (Orvmemcmp(s.buf, text, n) > 0) - (Orvmemcmp(s.buf, text, n) < 0);
  if (got != LONG_MIN) s = std::to_string(got).c_str();
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

// Each case runs on a built string and, when it starts empty, on a zero-filled
// one, the way records make their empty strings.
TEST(OrvString, EditsAndQueries) {
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
  };
  for (const char* file : {"string-edits.tsv", "string-queries.tsv"})
    for (const auto& c : Cases(file))
      rows.push_back({c[0], [c](S& s) { Apply(s, c[1], c[2], c[3]); }, c[4]});
  for (const Row& r : rows) {
    alignas(OrvString) unsigned char raw[sizeof(OrvString)] = {};
    OrvString built(r.in.data(), long(r.in.size()));
    OrvString* zeroed = std::launder(reinterpret_cast<OrvString*>(raw));
    for (OrvString* s : {&built, zeroed}) {
      if (s == zeroed && !r.in.empty()) continue;
      r.op(*s);
      ASSERT_NE(s->buf, nullptr) << r.in;
      EXPECT_EQ(s->buf[s->len], '\0') << r.in;
      EXPECT_EQ(Text(*s), r.want) << r.in << (s == zeroed ? " zero-filled" : "");
    }
    zeroed->~OrvString();
  }
  EXPECT_EQ(Orvstrlen("abc") + Orvstrlen(""), 3);
}

// Copies never share what they hold.
TEST(OrvString, CopiesStandAlone) {
  OrvString s("shared", -1), b(s), c, m;
  c = s, b.Cutlen(3), c += "!", s = s, m = static_cast<S&&>(c);
  EXPECT_EQ(Text(s) + Text(b) + Text(m) + std::to_string(c.len), "sharedshashared!0");

  OrvStrArray a, copied;
  a.AddString("dir/sub", 3);                            // out of the middle of a longer text
  for (int i = 0; i < 200; i++) a.AddString(a[0], -1);  // its own element while it moves
  copied.Split("x&y", '&');
  copied = a;
  OrvStrArray constructed(copied);
  a.RemoveAll(0);
  copied.Split("q", '&');
  EXPECT_EQ(a.count + copied.count + constructed.count, 202);
  EXPECT_EQ(constructed.GetString(200, s) + constructed.GetStringLen(201), 0);
  EXPECT_STREQ(constructed[200], "dir");
  EXPECT_EQ(Text(s), "dir");
}

}  // namespace
