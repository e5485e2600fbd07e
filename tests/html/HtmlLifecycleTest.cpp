#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "html/HtmlTestSupport.h"

namespace {

// Readers find the root as the first member behind the virtual table.
var_item* RootBehindTable(OrvBitsDoc& doc) {
  return *reinterpret_cast<var_item**>(reinterpret_cast<char*>(&doc) + sizeof(void*));
}

}  // namespace

// Each Open drops the tree before; a failed one leaves none.
TEST(OrvBitsDoc, OpenReopenClose) {
  std::string first = "<p>first</p>", second = "<b>second</b>";
  OrvHtmlDoc doc;
  OrvBitsDoc& base = doc;
  EXPECT_EQ(doc.Close(), 0);  // never opened
  const std::tuple<std::string*, long, int, std::string> opens[] = {
      {&first, -1, 0, "html|  body|    p|      \"first\""},  // measured
      {&second, 13, 0, "html|  body|    b|      \"second\""},
      {&first, 3, 0, "html|  body|    p"},  // only the given bytes
      {&first, 3000000000L, 1, ""},         // too long for the parser: fails unread
      {&first, 8, 0, "html|  body|    p|      \"first\""},
      {nullptr, 0, 0, ""}};
  for (auto [page, length, fails, tree] : opens) {
    EXPECT_EQ(doc.Open(page ? page->data() : nullptr, length, ORV_CHARSET_BYTES) != 0, fails);
    EXPECT_EQ(Dump(doc.root), tree) << length;
    EXPECT_EQ(RootBehindTable(doc), doc.root);
  }
  ASSERT_EQ(doc.Open(second.data(), 13, ORV_CHARSET_UTF8), 0);
  EXPECT_EQ(base.Close(), 0);
  EXPECT_EQ(RootBehindTable(doc), nullptr);
  OrvBitsDoc* heap = new OrvHtml;  // destroyed open, through the base
  ASSERT_EQ(static_cast<OrvHtml*>(heap)->Open(first.data(), 12, ORV_CHARSET_UTF8), 0);
  delete heap;
}

// Pages of growing size through one document, closed or not in between.
TEST(OrvBitsDoc, ManyPagesThroughOneDocument) {
  OrvHtml doc;
  for (int i = 0; i < 300; i++) {
    std::string page = "<div class=c" + std::to_string(i) + ">";
    std::string tree = "html|  body|    div class=\"c" + std::to_string(i) + "\"";
    for (int j = 0; j <= i; j++) {
      page += "<span>" + std::to_string(j) + "</span>";
      tree += "|      span|        \"" + std::to_string(j) + "\"";
    }
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_BYTES), 0);
    ASSERT_EQ(Dump(doc.root), tree);
    if (i % 2) doc.Close();
  }
}
