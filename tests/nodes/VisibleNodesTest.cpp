#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NodeClasses.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"
#include "support/ItemTree.h"

namespace {

const char* kPage = R"(
  html
    body
      ul
        li class=e
          "one"
        li class=e
          "two"
      "three"
)";

Classes Read(OrvWebPageVisibleNodes& nodes) {
  Classes out;
  for (int i = 0; i < nodes.GetClassCount(); i++) {
    void* handle = nodes.FetchClass(i);
    std::vector<std::string> items;
    for (int j = 0; j < nodes.GetNodesCount(handle); j++) {
      var_item* item = nullptr;
      EXPECT_EQ(nodes.FetchNode(handle, j, item), 1);
      items.push_back(Label(item));
    }
    out.push_back(items);
  }
  return out;
}

const Classes kExpected = {{"one", "two"}, {"one", "two", "three"}};

}  // namespace

TEST(VisibleNodes, ReadingOutOfRange) {
  ItemTree t(kPage);
  OrvWebPageVisibleNodes nodes;
  EXPECT_EQ(nodes.GetClassCount(), 0);
  EXPECT_EQ(nodes.FetchClass(0), nullptr);
  EXPECT_EQ(nodes.ClassifyNodes(nullptr), 1);
  EXPECT_EQ(nodes.GetClassCount(), 0);
  ASSERT_EQ(nodes.ClassifyNodes(t.root()), 1);
  ASSERT_EQ(nodes.GetClassCount(), 2);
  for (int index : {-1, 2, 1 << 30}) EXPECT_EQ(nodes.FetchClass(index), nullptr) << index;
  void* page = nodes.FetchClass(1);
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(nodes.GetNodesCount(page), 3);
  var_item* marker = t.root();
  for (int index : {-1, 3, -2147483647 - 1}) {
    EXPECT_EQ(nodes.FetchNode(page, index, marker), 0) << index;
    EXPECT_EQ(marker, t.root());
  }
  EXPECT_EQ(nodes.FetchNode(page, 2, marker), 1);
  EXPECT_EQ(marker, t.Find("three"));
}

TEST(VisibleNodes, ClearAndClassifyAgain) {
  ItemTree t(kPage);
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(t.root());
  EXPECT_EQ(Read(nodes), kExpected);
  nodes.ClearNodes();
  nodes.ClearNodes();
  EXPECT_EQ(nodes.GetClassCount(), 0);
  EXPECT_EQ(nodes.FetchClass(0), nullptr);
  nodes.ClassifyNodes(t.root());
  EXPECT_EQ(Read(nodes), kExpected);
  nodes.ClearNodes();
}

// Copies share one classifier: results classified through one are read
// through the other, and the objects may go in any order.
TEST(VisibleNodes, CopiesShareOneClassifier) {
  ItemTree t(kPage);
  for (int order = 0; order < 2; order++) {
    auto* first = new OrvWebPageVisibleNodes;
    auto* second = new OrvWebPageVisibleNodes(*first);
    OrvWebPageVisibleNodes third;
    third.ClassifyNodes(t.root());
    third = *first;  // drops its own classifier and its results
    first->ClassifyNodes(t.root());
    EXPECT_EQ(Read(*second), kExpected);
    EXPECT_EQ(Read(third), kExpected);
    third = third;
    if (order == 0) {
      delete first;
      delete second;
    } else {
      delete second;
      delete first;
    }
    EXPECT_EQ(Read(third), kExpected);
  }
}

// Storage is per object: clearing or destroying one leaves another's results.
TEST(VisibleNodes, ObjectsAreIndependent) {
  ItemTree t(kPage);
  OrvWebPageVisibleNodes kept;
  kept.ClassifyNodes(t.root());
  {
    OrvWebPageVisibleNodes other;
    other.ClassifyNodes(t.root());
    other.ClearNodes();
    other.ClassifyNodes(t.root());
  }
  EXPECT_EQ(Read(kept), kExpected);
  // The document is untouched by any of it.
  EXPECT_EQ(Label(t.Find("two")), "two");
  EXPECT_EQ(t.Find("two")->parent, t.Find("li")->next);
}
