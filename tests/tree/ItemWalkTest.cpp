#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/ItemTree.h"

static const char* kTree = R"(
  body
    a
      div
        link#60
          "text"
    script
      "s"
      span
        "in script"
    title
      "ti"
  "top"
)";

// Appends "label@depth ": a text run by its text, an element by its name.
static void Record(var_item* item, int32_t depth, void* user) {
  std::string label = !item ? "" : item->tag_id ? item->name : item->text;
  *static_cast<std::string*>(user) += label + "@" + std::to_string(depth) + " ";
}

// Parents before children, then the siblings after the first item; never up.
TEST(ItemWalk, WalkItemsOrder) {
  ItemTree t(kTree);
  std::string seen;
  WalkItems(nullptr, 1, Record, &seen);
  WalkItems(t.Find("script"), -1, Record, &seen);
  EXPECT_EQ(seen, "script@-1 s@0 span@0 in script@1 title@-1 ti@0 ");
}

TEST(ItemWalk, MillionDeepChain) {
  ItemTree t;
  t.Add(t.Nest(nullptr, 1000000, "div"), "\"deep\"");
  t.Add(nullptr, "\"top\"");
  std::string seen;
  auto visit = [](var_item* item, int32_t depth, void* user) {
    if (depth == 999999 || item->tag_id == 0) Record(item, depth, user);
  };
  WalkItems(t.root(), 1, visit, &seen);
  EXPECT_EQ(seen, "div@999999 deep@1000001 top@1 ");
}

// The nearest proper ancestor with the tag; depths step down per level, wrapping.
TEST(ItemWalk, FindAncestor) {
  ItemTree t(kTree);
  const uint16_t kDiv = t.Find("div")->tag_id;
  const std::tuple<const char*, uint16_t, int32_t, std::string> cases[] = {
      {"text", ORV_TAG_LINK, 5, "link@4 "}, {"div", ORV_TAG_LINK, 3, "a@2 "},
      {"text", kDiv, 5, "div@3 "},          {"text", 999, 5, "@1 "},
      {"a", ORV_TAG_LINK, 2, "@1 "},        {"text", kDiv, INT32_MIN + 1, "div@2147483647 "}};
  for (const auto& [from, tag, depth, expected] : cases) {
    var_item_pos found = FindAncestorPos(var_item_pos{t.Find(from), depth}, tag);
    std::string seen;
    Record(found.item, found.depth, &seen);
    EXPECT_EQ(seen, expected) << from;
    EXPECT_EQ(FindAncestor(t.Find(from), tag), found.item) << from;
  }
}

// Only the direct parent decides, and only a text run named "$text" is text.
TEST(ItemWalk, IsVisibleText) {
  ItemTree t(kTree);
  const std::tuple<const char*, bool> cases[] = {
      {"text", true}, {"s", false}, {"in script", true}, {"ti", false}, {"top", false}};
  for (auto [label, visible] : cases) EXPECT_EQ(IsVisibleText(t.Find(label)), visible) << label;
  // A copy of "text" with text length, tag and name (measured) changed.
  const std::tuple<int32_t, uint16_t, const char*, bool> changes[] = {
      {0, 0, "$TeXt", false}, {1, 1, "$text", false}, {1, 0, "$tex!", false},
      {1, 0, "$TeXt", true},  {1, 0, nullptr, false}, {1, 0, "$texts", false}};
  for (auto [textLength, tag, name, visible] : changes) {
    var_item copy = *t.Find("text");
    std::tie(copy.text_len, copy.tag_id, copy.name, copy.name_len) =
        std::tuple(textLength, tag, const_cast<char*>(name), -1);
    EXPECT_EQ(IsVisibleText(&copy), visible) << (name ? name : "(null)") << tag;
  }
}
