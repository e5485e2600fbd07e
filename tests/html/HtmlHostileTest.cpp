#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "html/HtmlTestSupport.h"
#include "orvwebpage/OrvHtml.h"

namespace {

struct Counts {
  int64_t items = 0;
  int64_t texts = 0;
  int64_t textBytes = 0;
  int32_t maxDepth = 0;
  bool consistent = true;
};

void Count(var_item* item, int32_t depth, void* user) {
  Counts* c = static_cast<Counts*>(user);
  c->items++;
  if (depth > c->maxDepth) c->maxDepth = depth;
  if (item->tag_id == 0) {
    c->texts++;
    c->textBytes += item->text_len;
    c->consistent = c->consistent && item->text_len > 0 && item->child == nullptr;
  }
  for (var_item* k = item->child; k; k = k->next)
    c->consistent = c->consistent && k->parent == item;
}

Counts OpenAndCount(std::string page, ORV_CHARSET charset) {
  OrvHtml doc;
  Counts counts;
  EXPECT_EQ(doc.Open(page.data(), static_cast<long>(page.size()), charset), 0);
  WalkItems(doc.root, 1, Count, &counts);
  return counts;
}

std::string Repeat(const std::string& piece, size_t times) {
  std::string out;
  out.reserve(piece.size() * times);
  for (size_t i = 0; i < times; i++) out += piece;
  return out;
}

std::string Garbage(size_t n, uint32_t seed) {
  std::string out(n, '\0');
  for (size_t i = 0; i < n; i++) {
    seed = seed * 1103515245u + 12345u;
    out[i] = static_cast<char>(seed >> 24);
  }
  return out;
}

}  // namespace

TEST(OrvHtmlHostile, AnyBytesArePages) {
  struct Case {
    const char* what;
    std::string page;
    int64_t minTextBytes;
  } cases[] = {
      {"NUL bytes", std::string("<p>a\0b\0</p>\0\0<i>\0</i>", 20), 2},
      {"only NUL bytes", std::string(1000, '\0'), 0},
      {"control bytes", "<p>\x01\x02\x1B\x7F\x08 x</p>", 1},
      {"garbage", Garbage(200000, 7), 1000},
      {"garbage with tags", Repeat(Garbage(50, 3) + "<a href=\"" + Garbage(20, 9) + "\">", 2000),
       1000},
      {"unterminated tag", "<div class=\"never closed", 0},
      {"unterminated comment", "<p>x</p><!-- " + Repeat("y", 100000), 1},
      {"unterminated script", "<script>" + Repeat("if (a < b) { c(); }\n", 20000), 100000},
      {"ten megabytes of text", Repeat("word and more words ", 500000), 10000000},
      {"many attributes", "<p " + Repeat("a=1 ", 2000) + ">x", 1},
      {"overlong names", "<" + Repeat("x", 100000) + " " + Repeat("y", 100000) + "=1>z", 1},
  };
  for (const Case& c : cases) {
    for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
      Counts counts = OpenAndCount(c.page, charset);
      EXPECT_TRUE(counts.consistent) << c.what;
      EXPECT_GE(counts.textBytes, c.minTextBytes) << c.what << " charset " << charset;
    }
  }
}

TEST(OrvHtmlHostile, MillionDeepPageOpensAndCloses) {
  const int32_t depth = 1000000;
  std::string page = Repeat("<div>", depth) + "deep" + Repeat("</div>", depth) + "<p>after</p>";
  Counts counts = OpenAndCount(page, ORV_CHARSET_BYTES);
  EXPECT_TRUE(counts.consistent);
  EXPECT_EQ(counts.texts, 2);
  EXPECT_EQ(counts.maxDepth, depth + 3);  // html, body, the divs, the text
  // Unclosed, and closed by stray end tags that match nothing.
  counts = OpenAndCount(Repeat("<span>", depth) + "x" + Repeat("</b>", 200000), ORV_CHARSET_UTF8);
  EXPECT_TRUE(counts.consistent);
  EXPECT_GE(counts.texts, 1);
}

TEST(OrvHtmlHostile, PrintsNothing) {
  const std::string pages[] = {
      "<meta charset=utf-8><p>\xE6\x96 \xFF\xFE broken</p>",
      "<meta charset=no-such-charset><p>x</p>",
      "<meta http-equiv=Content-Type content=\"text/html; charset=gb2312\"><p>\xE6\x96\xB0\xE7\x89 "
      "x</p>",
      "\xFE\xFF\xD8\x00 odd surrogate",
      "<p>\x01</b></i><!-- <![CDATA[ &#xFFFFFF; &bogus; <?x",
      Garbage(20000, 11),
  };
  for (const std::string& page : pages) {
    for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
      testing::internal::CaptureStderr();
      testing::internal::CaptureStdout();
      OpenAndCount(page, charset);
      std::string out = testing::internal::GetCapturedStdout();
      std::string err = testing::internal::GetCapturedStderr();
      EXPECT_EQ(out + err, "") << Escaped(page.data(),
                                          static_cast<int32_t>(std::min<size_t>(page.size(), 40)));
    }
  }
}
