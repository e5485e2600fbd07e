#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "NodeClasses.h"
#include "support/ItemTree.h"

namespace {

constexpr int32_t kDeep = 1000000;

}  // namespace

// A block whose first child holds a chain a million deep: the walk, the
// climb of the index and the collection below the block all go through it
// without growing the call stack.
TEST(DeepTree, MillionDeepBlock) {
  ItemTree t(R"(
    html
      body
        "top"
        ul
          li class=e
          li class=e
            "two"
  )");
  var_item* bottom = t.Nest(t.Find("li"), kDeep, "div");
  t.Add(bottom, "\"bottom\"");
  EXPECT_EQ(Classify(t.root()), (Classes{{"bottom", "two"}, {"top", "two", "bottom"}}));
}

// Visible text at every level of a million-deep chain: every depth has a
// parent to examine and a record in the page class.
TEST(DeepTree, TextAtEveryLevel) {
  ItemTree t(R"(
    html
      body
  )");
  var_item* at = t.Find("body");
  for (int32_t i = 0; i < kDeep; i++) {
    t.Add(at, "\"x\"");
    at = t.Add(at, "div");
  }
  OrvVisibleNodeClassifier c;
  c.Classify(t.root());
  ASSERT_EQ(c.classes.count, 1);
  EXPECT_EQ(c.classes.items[0].count, kDeep);
  EXPECT_EQ(c.minDepth, 3);
  EXPECT_EQ(c.maxDepth, kDeep + 2);
  // Every depth once, each with its one text.
  std::vector<int32_t> depths;
  for (int32_t i = 0; i < c.classes.items[0].count; i++)
    depths.push_back(static_cast<OrvNodeRecord*>(c.classes.items[0].items[i])->depth);
  std::sort(depths.begin(), depths.end());
  EXPECT_EQ(std::adjacent_find(depths.begin(), depths.end()), depths.end());
  EXPECT_EQ(depths.front(), 3);
  EXPECT_EQ(depths.back(), kDeep + 2);
}
