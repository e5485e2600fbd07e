#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NodeClasses.h"
#include "orvwebpage/OrvHtml.h"
#include "support/Cases.h"
#include "support/ItemTree.h"

namespace {

const char* kPage =
    "html\n body\n  ul\n   li class=e\n    \"one\"\n   li class=e\n    \"two\"\n  \"three\"";

}  // namespace

TEST(VisibleNodes, IndexesOutOfRange) {
  ItemTree t(kPage);
  OrvWebPageVisibleNodes nodes;
  EXPECT_EQ(nodes.ClassifyNodes(nullptr), 1);
  EXPECT_EQ(nodes.GetClassCount(), 0);
  ASSERT_EQ(nodes.ClassifyNodes(t.root()), 1);
  ASSERT_EQ(nodes.GetClassCount(), 2);
  for (int index : {-1, 2, 1 << 30}) EXPECT_EQ(nodes.FetchClass(index), nullptr) << index;
  void* page = nodes.FetchClass(1);
  var_item* item = t.root();
  for (int index : {-1, 3, INT32_MIN}) EXPECT_EQ(nodes.FetchNode(page, index, item), 0) << index;
  EXPECT_EQ(item, t.root());  // untouched
  EXPECT_EQ(nodes.FetchNode(page, 2, item), 1);
  EXPECT_EQ(item, t.Find("three"));
}

// Copies share one classifier; ClearNodes empties it for the next page, and
// another object's results are its own.
TEST(VisibleNodes, CopiesShareObjectsDoNot) {
  ItemTree t(kPage);
  const Classes expected = {{"one", "two"}, {"one", "two", "three"}};
  OrvWebPageVisibleNodes first, other;
  OrvWebPageVisibleNodes copy(first), assigned;
  assigned = first;
  first.ClassifyNodes(t.root());
  other.ClassifyNodes(t.root());
  EXPECT_EQ(Items(copy), Items(first));
  EXPECT_EQ(Items(assigned), Items(first));
  EXPECT_EQ(Classify(t.root()), expected);
  assigned.ClearNodes();
  EXPECT_EQ(first.GetClassCount(), 0);
  EXPECT_EQ(first.FetchClass(0), nullptr);
  EXPECT_EQ(other.GetClassCount(), 2);
  first.ClassifyNodes(t.root());
  EXPECT_EQ(Items(first), Items(other));
}

// Every real page classifies alike in a fresh object and in one reused after
// ClearNodes, handing out the document's own items; most real pages repeat.
TEST(VisibleNodes, RealPagesTheSameInFreshAndReusedObjects) {
  const auto paths = RealPagePaths();
  ASSERT_GE(paths.size(), 60u);
  size_t withBlocks = 0;
  OrvWebPageVisibleNodes reused;
  OrvHtml doc;
  for (const auto& path : paths) {
    std::string page = ReadFile(path);
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0) << path;
    std::vector<std::vector<var_item*>> fresh;
    {
      OrvWebPageVisibleNodes nodes;
      nodes.ClassifyNodes(doc.root);
      fresh = Items(nodes);
    }
    reused.ClassifyNodes(doc.root);
    EXPECT_EQ(Items(reused), fresh) << path;
    reused.ClearNodes();
    withBlocks += fresh.size() > 1;
  }
  EXPECT_GE(withBlocks, paths.size() / 2);
}
