#include <gtest/gtest.h>

#include <string>

#include "support/ItemTree.h"

// The builder the classifier tests lean on must build what its text says.
TEST(ItemTreeHelper, BuildsWhatTheTextSays) {
  ItemTree t(R"(
    div class="a b" data
      a href=/x?y=1 rel#7=next
        "li\"nk\n"
      span#5
    div
  "top"
  )");
  ASSERT_EQ(t.size(), 6u);
  var_item* div = t[0];
  EXPECT_EQ(t.root(), div);
  EXPECT_EQ(div->tag_id, t[4]->tag_id);
  EXPECT_EQ(div->next, t[4]);
  EXPECT_EQ(t[4]->next, t[5]);  // less indented than any open item: top level
  EXPECT_EQ(t[5]->parent, nullptr);
  EXPECT_EQ(div->child, t[1]);
  EXPECT_EQ(t[1]->next, t[3]);
  EXPECT_EQ(t[3]->parent, div);
  EXPECT_EQ(t[3]->tag_id, 5);
  EXPECT_EQ(t[1]->tag_id, ORV_TAG_LINK);
  var_item* text = t[2];
  EXPECT_EQ(text->parent, t[1]);
  EXPECT_EQ(text->tag_id, 0);
  EXPECT_EQ(std::string(text->name, 5), "$text");
  EXPECT_EQ(std::string(text->text, static_cast<size_t>(text->text_len)), "li\"nk\n");
  var_attr* cls = div->attr_list;
  EXPECT_EQ(std::string(cls->value, static_cast<size_t>(cls->value_len)), "a b");
  EXPECT_EQ(cls->next->value_len, 0);
  EXPECT_EQ(cls->next->next, nullptr);
  var_attr* href = t[1]->attr_list;
  EXPECT_EQ(href->attr_id, ORV_ATTR_LINK_TARGET);
  EXPECT_EQ(std::string(href->value, static_cast<size_t>(href->value_len)), "/x?y=1");
  EXPECT_EQ(href->next->attr_id, 7);
  EXPECT_EQ(t.Find("span"), t[3]);
  EXPECT_EQ(t.Find("li\"nk\n"), text);
}
