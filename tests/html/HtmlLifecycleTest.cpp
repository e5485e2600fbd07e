#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "html/HtmlTestSupport.h"
#include "orvwebpage/OrvHtml.h"

namespace {

var_item* RootBehindTable(OrvBitsDoc& doc) {
  // Readers find the root as the first member behind the virtual table.
  return *reinterpret_cast<var_item**>(reinterpret_cast<char*>(&doc) + sizeof(void*));
}

}  // namespace

TEST(OrvBitsDoc, OpenCloseAndReopen) {
  std::string first = "<p>first</p>";
  std::string second = "<b>second</b><i>more</i>";
  OrvHtml doc;
  EXPECT_EQ(doc.root, nullptr);
  EXPECT_EQ(doc.Close(), 0);                                    // closing a document never opened
  ASSERT_EQ(doc.Open(first.data(), -1, ORV_CHARSET_BYTES), 0);  // measured
  EXPECT_EQ(RootBehindTable(doc), doc.root);
  EXPECT_EQ(Dump(doc.root), "html\n  body\n    p\n      \"first\"\n");
  ASSERT_EQ(doc.Open(second.data(), static_cast<long>(second.size()), ORV_CHARSET_BYTES), 0);
  EXPECT_EQ(Dump(doc.root), "html\n  body\n    b\n      \"second\"\n    i\n      \"more\"\n");
  EXPECT_EQ(doc.Close(), 0);
  EXPECT_EQ(doc.root, nullptr);
  EXPECT_EQ(RootBehindTable(doc), nullptr);
  EXPECT_EQ(doc.Close(), 0);
  ASSERT_EQ(doc.Open(first.data(), 3, ORV_CHARSET_BYTES), 0);  // only the given bytes
  EXPECT_EQ(Dump(doc.root), "html\n  body\n    p\n");
  ASSERT_EQ(doc.Open(first.data(), 8, ORV_CHARSET_BYTES), 0);
  EXPECT_EQ(Dump(doc.root), "html\n  body\n    p\n      \"first\"\n");
}

TEST(OrvBitsDoc, CloseThroughTheBaseAndFailedOpen) {
  std::string page = "<p>x</p>";
  OrvHtmlDoc probe;
  OrvBitsDoc& base = probe;
  ASSERT_EQ(probe.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
  ASSERT_NE(probe.root, nullptr);
  EXPECT_EQ(RootBehindTable(probe), probe.root);
  base.Close();
  EXPECT_EQ(probe.root, nullptr);
  // Too long to hand to the parser: fails before reading a byte, and the old
  // tree is gone too.
  ASSERT_EQ(probe.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
  EXPECT_NE(probe.Open(page.data(), 3000000000L, ORV_CHARSET_BYTES), 0);
  EXPECT_EQ(probe.root, nullptr);
  EXPECT_EQ(probe.Open(nullptr, 0, ORV_CHARSET_BYTES), 0);
  EXPECT_EQ(probe.root, nullptr);
  EXPECT_EQ(probe.Open(nullptr, -1, ORV_CHARSET_UTF8), 0);
  EXPECT_EQ(probe.root, nullptr);
  // Destroyed while open, through the base.
  OrvBitsDoc* heap = new OrvHtml;
  ASSERT_EQ(static_cast<OrvHtml*>(heap)->Open(page.data(), static_cast<long>(page.size()),
                                              ORV_CHARSET_UTF8),
            0);
  delete heap;
}

TEST(OrvBitsDoc, ManyPagesThroughOneDocumentStayIndependent) {
  OrvHtml doc;
  for (int i = 0; i < 300; i++) {
    std::string page = "<div class=c" + std::to_string(i) + ">";
    for (int j = 0; j <= i; j++) page += "<span>" + std::to_string(j) + "</span>";
    ASSERT_EQ(doc.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
    var_item* div = doc.root->child->child;
    ASSERT_EQ(std::string(div->attr_list->value, static_cast<size_t>(div->attr_list->value_len)),
              "c" + std::to_string(i));
    int spans = 0;
    for (var_item* s = div->child; s; s = s->next) {
      ASSERT_EQ(std::string(s->child->text, static_cast<size_t>(s->child->text_len)),
                std::to_string(spans));
      spans++;
    }
    ASSERT_EQ(spans, i + 1);
    if (i % 2) doc.Close();
  }
}
