#include <gtest/gtest.h>

#include <string>

#include "html/HtmlTestSupport.h"
#include "support/Cases.h"

namespace {

struct TextsAndLinks {
  std::string texts, hrefs;
};

void Gather(var_item* item, int32_t, void* user) {
  auto* out = static_cast<TextsAndLinks*>(user);
  if (item->tag_id == 0) {
    out->texts += (out->texts.empty() ? "" : "|") + Escaped(item->text, item->text_len);
  } else if (item->tag_id == ORV_TAG_LINK) {
    for (var_attr* a = item->attr_list; a; a = a->next)
      if (a->attr_id == ORV_ATTR_LINK_TARGET)
        out->hrefs += (out->hrefs.empty() ? "" : "|") + Escaped(a->value, a->value_len);
  }
}

// Pages whose declared charset cannot decode all of them: every text and
// link after the bad bytes is still there, and what comes out is UTF-8.
TEST(OrvHtml, DeclaredCharsetsReadOn) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/html/charsets.tsv", 5)) {
    std::string page = Unescape(c[2]);
    OrvHtml doc;
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8,
                       c[1].empty() ? nullptr : c[1].c_str()),
              0)
        << c[0];
    TextsAndLinks got;
    WalkItems(doc.root, 1, Gather, &got);
    EXPECT_EQ(got.texts, c[3]) << c[0];
    EXPECT_EQ(got.hrefs, c[4]) << c[0];
  }
}

}  // namespace
