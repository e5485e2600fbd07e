#include <climits>
#include <functional>
#include <new>
#include <tuple>

#include "core/OrvStrMap.h"
#include "orvwebpage/OrvString.h"
#include "support/Cases.h"

namespace {

using S = OrvString;

std::string Text(const OrvString& s) { return s.buf ? std::string(s.buf, s.len) : "(null)"; }

// An operation of a case file. a is a text ("(null)" for NULL) or a number, b
// a length or index (empty: a's size) or a second text. A query leaves its
// answer as the text; an index not found reads -1.
void Apply(OrvString& s, const std::string& op, const std::string& a, const std::string& b) {
  const char* text = a == "(null)" ? nullptr : a.data();
  const long size = long(a.size());
  const long n = b.empty() || op == "Replace" || op == "Format" ? size : std::stol(b);
  long got = LONG_MIN;
  if (op == "Built") s = OrvString(text, n);
  if (op == "CopyBuf") s.CopyBuf(text, n);
  if (op == "Append") s.Append(text, n);
  if (op == "Assign") s = text;
  if (op == "Clear") s.Clear();
  if (op == "Format") s.Format(a.c_str(), b == "(null)" ? nullptr : b.c_str());  // one %s
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
  if (op == "Split") {                   // the pieces of copies of the array, each behind a '|'
    static OrvStrArray array, assigned;  // used again and again: only the newest pieces remain
    array.Split("left&over&from&before", '&');
    array.Split(s.buf, a[0]);
    OrvStrArray copy(array);
    assigned = copy;
    array.RemoveAll(0), copy.Split("x", '&');  // copies stand alone
    std::string pieces;
    for (int32_t i = 0; i < assigned.count; i++)
      pieces +=
          "|" + std::string(assigned.buf + assigned.offsets[i], size_t(assigned.GetStringLen(i)));
    s = pieces.c_str();
  }
}

// Each case runs on a built string and, when it starts empty, on a zero-filled
// one, the way records make their empty strings.
TEST(OrvString, EditsAndQueries) {
  std::vector<std::tuple<std::string, std::function<void(OrvString&)>, std::string>> rows = {
      {"", [](S& s) { s.Format("%d", INT_MIN); }, "-2147483648"},
      {"", [](S& s) { s.Format("[%5s|%-*d|%.2f%%]", "ab", 3, 7, 1.5); }, "[   ab|7  |1.50%]"},
      {"", [](S& s) { s.Format("%ld %lld %ls %hhd", 5L, 6LL, L"w", 300); }, "5 6 w 44"},
      {"self", [](S& s) { s.Format("%s+%s", s.buf, s.buf); }, "self+self"},
      {"ab", [](S& s) { s.Append(s.buf, s.len), s.Append(s.buf, -1); }, "abababab"},
      {"abcdef", [](S& s) { s.CopyBuf(s.buf + 2, -1); }, "cdef"},
  };
  for (const char* file : {"core/string-edits.tsv", "core/string-queries.tsv"})
    for (const auto& c : ReadCases(ORV_CASES_DIR "/" + std::string(file), 8, true))
      rows.push_back({c[0], [c](S& s) { Apply(s, c[1], c[2], c[3]); }, c[4]});
  for (const auto& [in, op, want] : rows) {
    alignas(OrvString) unsigned char raw[sizeof(OrvString)] = {};
    OrvString built(in.data(), long(in.size()));
    OrvString* zeroed = std::launder(reinterpret_cast<OrvString*>(raw));
    for (OrvString* s : {&built, zeroed}) {
      if (s == zeroed && !in.empty()) continue;
      op(*s);
      ASSERT_NE(s->buf, nullptr) << in;
      EXPECT_EQ(s->buf[s->len], '\0') << in;
      EXPECT_EQ(Text(*s), want) << in << (s == zeroed ? " zero-filled" : "");
    }
    zeroed->~OrvString();
  }
}

// Copies never share text; texts may come out of the very string or array.
TEST(OrvString, CopiesAndOwnTexts) {
  OrvString s("shared", -1), b(s), c, m;
  c = s, b.Cutlen(3), c += "!", s = s, m = static_cast<S&&>(c);
  EXPECT_EQ(Text(s) + Text(b) + Text(m) + std::to_string(c.len), "sharedshashared!0");
  OrvStrArray a;
  a.AddString("dir/sub", 3);                            // out of the middle of a longer text
  for (int i = 0; i < 200; i++) a.AddString(a[i], -1);  // its own elements while they move
  EXPECT_EQ(a.GetString(200, s) + a.GetStringLen(201) + a.GetStringLen(-1), -1);
  EXPECT_EQ(Text(s), "dir");
}

}  // namespace
