#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "NodeClasses.h"
#include "orvwebpage/OrvHtml.h"
#include "support/ItemTree.h"

// Each case is a tree in ItemTree lines or an HTML page, with the classes its
// visible items fall into: one per outermost block, the page class last.
TEST(Classify, Cases) {
  std::ifstream in(ORV_CASES_DIR "/nodes/classes.json");
  nlohmann::json cases = nlohmann::json::parse(in, nullptr, false);
  ASSERT_TRUE(cases.is_array() && !cases.empty());
  for (const auto& c : cases) {
    SCOPED_TRACE(c["name"].get<std::string>());
    if (c.contains("html")) {
      std::string page = c["html"];
      OrvHtml doc;
      ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
      EXPECT_EQ(Classify(doc.root), c["classes"].get<Classes>());
    } else {
      std::string tree;
      for (const auto& line : c["tree"]) tree += line.get<std::string>() + "\n";
      ItemTree t(tree);
      EXPECT_EQ(Classify(t.root()), c["classes"].get<Classes>());
    }
  }
}

// A block whose first child holds a chain a million deep with text at every
// level: the walk, the climb, the search for blocks and the collection below
// the block all go through it without growing the call stack.
TEST(Classify, MillionDeepBlock) {
  constexpr int32_t kDeep = 1000000;
  ItemTree t("html\n body\n  \"top\"\n  ul\n   li class=e\n   li class=e\n    \"two\"");
  var_item* at = t.Find("li");
  for (int32_t i = 0; i < kDeep; i++) {
    t.Add(at, "\"x\"");
    at = t.Add(at, "div");
  }
  Classes got = Classify(t.root());
  ASSERT_EQ(got.size(), 2u);
  EXPECT_EQ(got[0].size(), size_t(kDeep) + 1);
  EXPECT_EQ(got[0].back(), "two");
  EXPECT_EQ(got[1].size(), size_t(kDeep) + 2);
}
