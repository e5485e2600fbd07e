#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "NodeClasses.h"
#include "support/ItemTree.h"

namespace {

bool Never(var_item*) { return false; }
bool HasText(var_item* item) { return item->text && item->text_len > 0; }

char kMarked[] = "m";

void Index(OrvVisibleNodeClassifier& c, var_item* root) {
  WalkItems(root, 1, OrvVisibleNodeClassifier::OnItem, &c);
}

// Each depth with its records as label@depth, by rising depth.
std::vector<std::pair<int32_t, std::vector<std::string>>> Levels(OrvVisibleNodeClassifier& c,
                                                                 int32_t from, int32_t to) {
  std::vector<std::pair<int32_t, std::vector<std::string>>> out;
  for (int32_t d = from; d <= to; d++) {
    OrvPtrList** list = c.levels.Find(d);
    if (!list) continue;
    std::vector<std::string> labels;
    for (int32_t i = 0; i < (*list)->count; i++) {
      auto* r = static_cast<OrvNodeRecord*>((*list)->items[i]);
      labels.push_back(Label(r->item) + "@" + std::to_string(r->depth));
    }
    out.emplace_back(d, labels);
  }
  return out;
}

std::vector<std::string> ChildrenOf(OrvVisibleNodeClassifier& c, const var_item* parent) {
  OrvPtrList** list = c.children.Find(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(parent)));
  if (!list) return {"(none)"};
  return Labels(**list);
}

}  // namespace

TEST(NodeIndex, NothingAcceptedLeavesTheMapsEmpty) {
  ItemTree t(R"(
    html
      body
        "text"
  )");
  for (OrvNodeTest test : {Never, static_cast<OrvNodeTest>(IsVisibleText)}) {
    OrvVisibleNodeClassifier c;
    c.nodeTest = test;
    c.Classify(test == Never ? t.root() : nullptr);
    EXPECT_EQ(c.levels.count, 0u);
    EXPECT_EQ(c.children.count, 0u);
    EXPECT_EQ(c.minDepth, 65535);
    EXPECT_EQ(c.maxDepth, 0);
    EXPECT_EQ(c.classes.count, 0);
  }
}

// Only items that are accepted or lead to one are recorded, each once per map,
// and each list is in document order.
TEST(NodeIndex, RecordsAcceptedItemsAndTheirAncestorsOnce) {
  ItemTree t(R"(
    html
      head
        title
          "T"
      body
        p
          "one"
          "two"
        div
          span
        ul
          li
            "deep"
          li
            "deeper"
  )");
  OrvVisibleNodeClassifier c;
  Index(c, t.root());
  EXPECT_EQ(c.minDepth, 4);
  EXPECT_EQ(c.maxDepth, 5);
  EXPECT_EQ(Levels(c, -2, 8), (std::vector<std::pair<int32_t, std::vector<std::string>>>{
                                  {1, {"html@1"}},
                                  {2, {"body@2"}},
                                  {3, {"p@3", "ul@3"}},
                                  {4, {"one@4", "two@4", "li@4", "li@4"}},
                                  {5, {"deep@5", "deeper@5"}}}));
  EXPECT_EQ(c.children.count, 7u);
  EXPECT_EQ(ChildrenOf(c, nullptr), std::vector<std::string>{"html"});
  EXPECT_EQ(ChildrenOf(c, t.Find("html")), std::vector<std::string>{"body"});
  EXPECT_EQ(ChildrenOf(c, t.Find("body")), (std::vector<std::string>{"p", "ul"}));
  EXPECT_EQ(ChildrenOf(c, t.Find("p")), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(ChildrenOf(c, t.Find("ul")), (std::vector<std::string>{"li", "li"}));
  EXPECT_EQ(ChildrenOf(c, t.Find("deep")->parent), std::vector<std::string>{"deep"});
  EXPECT_EQ(ChildrenOf(c, t.Find("head")), std::vector<std::string>{"(none)"});
  EXPECT_EQ(ChildrenOf(c, t.Find("div")), std::vector<std::string>{"(none)"});
}

TEST(NodeIndex, OneItemAtDepthThree) {
  ItemTree t(R"(
    html
      body
        "only"
  )");
  OrvVisibleNodeClassifier c;
  Index(c, t.root());
  EXPECT_EQ(Levels(c, 0, 4), (std::vector<std::pair<int32_t, std::vector<std::string>>>{
                                 {1, {"html@1"}}, {2, {"body@2"}}, {3, {"only@3"}}}));
  EXPECT_EQ(ChildrenOf(c, nullptr), std::vector<std::string>{"html"});
  EXPECT_EQ(ChildrenOf(c, t.Find("html")), std::vector<std::string>{"body"});
  EXPECT_EQ(ChildrenOf(c, t.Find("body")), std::vector<std::string>{"only"});
  EXPECT_EQ(c.children.count, 3u);
  EXPECT_EQ(c.minDepth, 3);
  EXPECT_EQ(c.maxDepth, 3);
}

// An accepted element comes before its accepted descendants and is found by
// them: one record each, and the same record object in both maps.
TEST(NodeIndex, AcceptedAncestorIsNotRecordedAgain) {
  ItemTree t(R"(
    html
      body
        div
          p
            "a"
            "b"
          "c"
  )");
  t.Find("div")->text = kMarked;
  t.Find("div")->text_len = 1;
  OrvVisibleNodeClassifier c;
  c.nodeTest = HasText;
  Index(c, t.root());
  EXPECT_EQ(Levels(c, 1, 5),
            (std::vector<std::pair<int32_t, std::vector<std::string>>>{{1, {"html@1"}},
                                                                       {2, {"body@2"}},
                                                                       {3, {"div@3"}},
                                                                       {4, {"p@4", "c@4"}},
                                                                       {5, {"a@5", "b@5"}}}));
  EXPECT_EQ(ChildrenOf(c, t.Find("body")), std::vector<std::string>{"div"});
  EXPECT_EQ((*c.levels.Find(3))->items[0],
            (*c.children.Find(reinterpret_cast<uintptr_t>(t.Find("body"))))->items[0]);
  EXPECT_EQ(c.minDepth, 3);
  EXPECT_EQ(c.maxDepth, 5);
}

// A root that has a parent of its own: the climb goes on above depth 1.
TEST(NodeIndex, ClimbsAboveASubtreeRoot) {
  ItemTree t(R"(
    html
      body
        section
          "in"
  )");
  OrvVisibleNodeClassifier c;
  Index(c, t.Find("section"));
  EXPECT_EQ(Levels(c, -5, 5),
            (std::vector<std::pair<int32_t, std::vector<std::string>>>{
                {-1, {"html@-1"}}, {0, {"body@0"}}, {1, {"section@1"}}, {2, {"in@2"}}}));
  EXPECT_EQ(ChildrenOf(c, nullptr), std::vector<std::string>{"html"});
}

TEST(NodeIndex, ClearEmptiesAndKeepsTheTables) {
  ItemTree t(R"(
    html
      body
        ul
          li class=e
            "one"
          li class=e
            "two"
        "three"
  )");
  OrvVisibleNodeClassifier c;
  c.Clear();
  c.Classify(t.root());
  auto* levelBuckets = c.levels.buckets;
  auto* childBuckets = c.children.buckets;
  c.Clear();
  c.Clear();
  EXPECT_EQ(c.levels.count, 0u);
  EXPECT_EQ(c.children.count, 0u);
  EXPECT_EQ(c.levels.Find(3), nullptr);
  EXPECT_EQ(c.children.Find(0), nullptr);
  EXPECT_EQ(c.classes.count, 0);
  EXPECT_EQ(c.classes.items, nullptr);
  c.Classify(t.root());
  EXPECT_EQ(c.levels.buckets, levelBuckets);
  EXPECT_EQ(c.children.buckets, childBuckets);
  EXPECT_EQ(ClassLabels(c), (Classes{{"one", "two"}, {"one", "two", "three"}}));
}
