#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "html/HtmlTestSupport.h"

namespace {

struct Counts {
  int64_t texts = 0;
  int64_t textBytes = 0;
  int32_t maxDepth = 0;
  bool linked = true;  // text runs are non-empty leaves, children point back
};

void Count(var_item* item, int32_t depth, void* user) {
  Counts* c = static_cast<Counts*>(user);
  c->maxDepth = std::max(c->maxDepth, depth);
  if (item->tag_id == 0) {
    c->texts++;
    c->textBytes += item->text_len;
    c->linked = c->linked && item->text_len > 0 && !item->child;
  }
  for (var_item* k = item->child; k; k = k->next) c->linked = c->linked && k->parent == item;
}

Counts OpenAndCount(std::string page, ORV_CHARSET charset) {
  OrvHtml doc;
  Counts counts;
  EXPECT_EQ(doc.Open(page.data(), long(page.size()), charset), 0);
  WalkItems(doc.root, 1, Count, &counts);
  return counts;
}

std::string Repeat(const std::string& piece, size_t times) {
  std::string out;
  for (size_t i = 0; i < times; i++) out += piece;
  return out;
}

std::string Garbage(size_t n, uint32_t seed) {
  std::string out(n, '\0');
  for (char& c : out) c = char((seed = seed * 1103515245u + 12345u) >> 24);
  return out;
}

}  // namespace

// Any bytes open to a sound tree that keeps the text, and nothing is printed.
TEST(OrvHtmlHostile, AnyBytesArePages) {
  const std::tuple<const char*, std::string, int64_t> cases[] = {
      {"NUL bytes", std::string("<p>a\0b\0</p>\0\0<i>\0</i>", 20), 2},
      {"only NUL bytes", std::string(1000, '\0'), 0},
      {"garbage with tags", Repeat(Garbage(50, 3) + "<a href=\"" + Garbage(20, 9) + "\">", 2000),
       1000},
      {"unterminated comment", "<p>x</p><!-- " + Repeat("y", 100000), 1},
      {"unterminated script", "<script>" + Repeat("if (a < b) { c(); }\n", 20000), 100000},
      {"ten megabytes of text", Repeat("word and more words ", 500000), 10000000},
      {"overlong names", "<" + Repeat("x", 100000) + " " + Repeat("y", 100000) + "=1>z", 1},
      {"broken declared UTF-8", "<meta charset=utf-8><p>\xE6\x96 \xFF\xFE broken</p>", 5},
      {"odd surrogate", "\xFE\xFF\xD8\x00 odd surrogate", 0},
      {"broken markup", "<p>\x01</b></i><!-- <![CDATA[ &#xFFFFFF; &bogus; <?x", 0}};
  for (const auto& [what, page, minTextBytes] : cases) {
    for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
      testing::internal::CaptureStderr();
      testing::internal::CaptureStdout();
      Counts counts = OpenAndCount(page, charset);
      std::string printed = testing::internal::GetCapturedStdout();
      printed += testing::internal::GetCapturedStderr();
      EXPECT_EQ(printed, "") << what;
      EXPECT_TRUE(counts.linked) << what;
      EXPECT_GE(counts.textBytes, minTextBytes) << what << " charset " << charset;
    }
  }
}

TEST(OrvHtmlHostile, MillionDeepPage) {
  const int32_t depth = 1000000;
  std::string page = Repeat("<div>", depth) + "deep" + Repeat("</div>", depth) + "<p>after</p>";
  Counts counts = OpenAndCount(page, ORV_CHARSET_BYTES);
  EXPECT_TRUE(counts.linked);
  EXPECT_EQ(counts.texts, 2);
  EXPECT_EQ(counts.maxDepth, depth + 3);  // html, body, the divs, the text
  // Unclosed, and closed by stray end tags that match nothing.
  counts = OpenAndCount(Repeat("<span>", depth) + "x" + Repeat("</b>", 200000), ORV_CHARSET_UTF8);
  EXPECT_TRUE(counts.linked);
  EXPECT_EQ(counts.texts, 1);
}

// End tags in a script that close nothing spend the same budget as stray end
// tags outside one: deep enough, the page ends inside the script.
TEST(OrvHtmlHostile, EndTagsInScriptsSpendTheBudget) {
  std::string script = "<script>x" + Repeat("</x>", 3000) + "</script>after";
  for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
    EXPECT_EQ(OpenAndCount(Repeat("<div>", 10) + script, charset).textBytes, 12006) << charset;
    Counts deep = OpenAndCount(Repeat("<div>", 100000) + script, charset);
    EXPECT_EQ(deep.texts, 1) << charset;
    EXPECT_EQ(deep.textBytes, 10000) << charset;
  }
}
