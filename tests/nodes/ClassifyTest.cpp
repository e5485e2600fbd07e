#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "NodeClasses.h"
#include "support/ItemTree.h"

namespace {

bool HasText(var_item* item) { return item->text && item->text_len > 0; }

char kLeaf1[] = "L1";
char kLeaf2[] = "L2";

// Element lines of n siblings at the given indentation, each holding a text.
std::string Siblings(int n, const std::string& indent,
                     const std::function<std::string(int)>& line) {
  std::string out;
  for (int i = 0; i < n; i++)
    out += indent + line(i) + "\n" + indent + "  \"t" + std::to_string(i) + "\"\n";
  return out;
}

}  // namespace

// Blocks: a parent with two like children (same name, same "class" value,
// letters folded) makes a class of the visible items below its children, if
// the parent lies between the shallowest and the deepest visible item.
TEST(Classify, BlockExamples) {
  struct Case {
    const char* name;
    std::string tree;
    Classes expected;
    std::function<void(ItemTree&)> patch = nullptr;
  } cases[] = {
      {"nothing visible",
       R"(
        html
          body
            div class=x
            div class=x
        )",
       {}},
      {"visible items at one depth give the page class alone",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li class=e
                "two"
        )",
       {{"one", "two"}}},
      {"list with a visible item at depth 3 elsewhere",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li class=e
                "two"
            "three"
        )",
       {{"one", "two"}, {"one", "two", "three"}}},
      {"only one child has the class attribute",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li
                "two"
            "three"
        )",
       {{"one", "two", "three"}}},
      {"same class under different names",
       R"(
        html
          body
            ul
              li class=e
                "one"
              div class=e
                "two"
            "three"
        )",
       {{"one", "two", "three"}}},
      {"names that differ only in case",
       R"(
        html
          body
            ul
              li class=e
                "one"
              LI class=e
                "two"
            "three"
        )",
       {{"one", "two"}, {"one", "two", "three"}}},
      {"class values that differ only in case",
       R"(
        html
          body
            ul
              li class=Entry
                "one"
              li class=eNTRY
                "two"
            "three"
        )",
       {{"one", "two"}, {"one", "two", "three"}}},
      {"two empty class values",
       R"(
        html
          body
            ul
              li class
                "one"
              li class=""
                "two"
            "three"
        )",
       {{"one", "two"}, {"one", "two", "three"}}},
      {"the same words in another order",
       R"(
        html
          body
            ul
              li class="a b"
                "one"
              li class="b a"
                "two"
            "three"
        )",
       {{"one", "two", "three"}}},
      {"a blank at the end of a value counts",
       R"(
        html
          body
            ul
              li class="a "
                "one"
              li class=a
                "two"
            "three"
        )",
       {{"one", "two", "three"}}},
      {"an unlike child's items join the block",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li class=e
                "two"
              p
                "other"
            "three"
        )",
       {{"one", "two", "other"}, {"one", "two", "other", "three"}}},
      {"a child with nothing visible counts for nothing",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li class=e
              p
                "two"
            "three"
        )",
       {{"one", "two", "three"}}},
      {"like leaves make an empty block, dropped",
       R"(
        html
          body
            p
              $text#0 class=x
              $text#0 class=x
            "three"
        )",
       {{"L1", "L2", "three"}},
       [](ItemTree& t) {
         t[3]->text = kLeaf1;
         t[3]->text_len = 2;
         t[4]->text = kLeaf2;
         t[4]->text_len = 2;
       }},
      {"a single child after a block-forming parent",
       R"(
        html
          body
            ul
              li class=e
                "one"
              li class=e
                "two"
            div
              span class=e
                "solo"
            "three"
        )",
       {{"one", "two"}, {"one", "two", "solo", "three"}}},
      {"a block in a block makes one class",
       R"(
        html
          body
            ul
              li class=e
                ol
                  i class=f
                    "a1"
                  i class=f
                    "a2"
              li class=e
                "b"
            "three"
        )",
       {{"a1", "a2", "b"}, {"b", "a1", "a2", "three"}}},
      {"two blocks side by side",
       R"(
        html
          body
            ol
              li class=f
                "x"
              li class=f
                "y"
            ul
              li class=e
                "one"
              li class=e
                "two"
            "three"
        )",
       {{"x", "y"}, {"one", "two"}, {"x", "y", "one", "two", "three"}}},
      {"shallower blocks come first",
       R"(
        html
          body
            div
              ul
                li class=e
                  "deep1"
                li class=e
                  "deep2"
            ol
              li class=f
                "x"
              li class=f
                "y"
            "three"
        )",
       {{"x", "y"}, {"deep1", "deep2"}, {"x", "y", "deep1", "deep2", "three"}}},
      {"a block takes what lies below the children, parents first",
       R"(
        html
          body
            div
              p class=e
                "own"
              p class=e
                "again"
                b
                  "bold"
            "three"
        )",
       {{"own", "again", "bold"}, {"own", "again", "bold", "three"}}},
      {"text under a no-text element is not visible",
       R"(
        html
          body
            ul
              li class=e
                script
                  "code"
              li class=e
                style
                  "rules"
            "three"
        )",
       {{"three"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ItemTree t(c.tree);
    if (c.patch) c.patch(t);
    EXPECT_EQ(Classify(t.root()), c.expected);
  }
}

// Long child lists are searched by kind rather than pair by pair; the answer
// must not depend on the length.
TEST(Classify, LongChildLists) {
  struct Case {
    const char* name;
    int count;
    std::function<std::string(int)> line;
    bool block;
  } cases[] = {
      {"all different, short", 10, [](int i) { return "li class=c" + std::to_string(i); }, false},
      {"all different, long", 40, [](int i) { return "li class=c" + std::to_string(i); }, false},
      {"one late pair, long", 40,
       [](int i) { return "li class=c" + std::to_string(i == 39 ? 20 : i); }, true},
      {"late pair by case only, long", 40,
       [](int i) {
         return i == 38   ? std::string("LI class=X")
                : i == 12 ? "li class=x"
                          : "li class=c" + std::to_string(i);
       },
       true},
      {"no class anywhere, long", 40, [](int) { return std::string("li"); }, false},
      {"same class, names all differ, long", 40,
       [](int i) { return "n" + std::to_string(i) + " class=x"; }, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::string tree =
        "html\n  body\n    ul\n" + Siblings(c.count, "      ", c.line) + "    \"top\"\n";
    ItemTree t(tree);
    Classes got = Classify(t.root());
    std::vector<std::string> items;
    for (int i = 0; i < c.count; i++) items.push_back("t" + std::to_string(i));
    std::vector<std::string> page = items;
    page.push_back("top");
    Classes expected;
    if (c.block) expected.push_back(items);
    expected.push_back(page);
    EXPECT_EQ(got, expected);
  }
}

// The first record that has a like partner further on, with all its partners;
// without one, the last record but one alone.
TEST(Classify, SimilarGroupIsTheFirstWithAPartner) {
  struct Case {
    std::vector<std::string> kinds;  // class values, "-" for none
    std::vector<int> group;
  } cases[] = {
      {{"a", "b", "b", "a"}, {0, 3}}, {{"-", "b", "c", "b", "b"}, {1, 3, 4}},
      {{"a", "b", "c"}, {1}},         {{"-", "-"}, {0}},
      {{"x", "y", "Y", "X"}, {0, 3}},
  };
  for (int pad : {0, 30}) {
    for (const Case& c : cases) {
      std::string tree = "ul\n";
      std::vector<std::string> kinds = c.kinds;
      // Padding in front with kinds of their own keeps the answer, shifted.
      for (int i = 0; i < pad; i++) kinds.insert(kinds.begin(), "p" + std::to_string(i));
      for (const std::string& k : kinds) tree += k == "-" ? "  li\n" : "  li class=" + k + "\n";
      ItemTree t(tree);
      OrvVisibleNodeClassifier classifier;
      std::vector<OrvNodeRecord> records(kinds.size());
      OrvPtrList list;
      for (size_t i = 0; i < kinds.size(); i++) {
        records[i] = OrvNodeRecord{2, t[i + 1]};
        list.Add(&records[i]);
      }
      OrvPtrList group;
      group.Add(&records[0]);
      classifier.FindSimilarGroup(group, list);
      std::vector<int> got;
      for (int32_t i = 0; i < group.count; i++)
        got.push_back(int(static_cast<OrvNodeRecord*>(group.items[i]) - records.data()) - pad);
      EXPECT_EQ(got, c.group) << "pad " << pad << " first kind " << c.kinds[0];
    }
  }
}

// The page class stands in the flat order of the depth map: buckets by the
// depth's low bits, and inside a bucket the order in which the depths first
// appeared. The first visible item at depth 6 brings in 6, then 5 down to 1.
TEST(Classify, PageClassInDepthMapOrder) {
  ItemTree t(R"(
    d1
      d2
        d3
          d4
            d5
              "six"
    "one"
    e1
      "two"
      e2
        "three"
        e3
          "four"
          e4
            "five"
  )");
  EXPECT_EQ(Classify(t.root(), HasText), (Classes{{"four", "five", "one", "six", "two", "three"}}));
}

// A second classification without Clear adds to the first: the accepted items
// get second records, the first run's classes keep their places, and blocks
// whose keys were consumed are found again under fresh lists.
TEST(Classify, SecondRunWithoutClearAdds) {
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
  OrvVisibleNodeClassifier classifier;
  classifier.Classify(t.root());
  classifier.Classify(t.root());
  EXPECT_EQ(ClassLabels(classifier), (Classes{{"one", "two"},
                                              {"one", "two", "three"},
                                              {"one", "two"},
                                              {"one", "two", "one", "two", "three", "three"}}));
  classifier.Clear();
  EXPECT_EQ(classifier.classes.count, 0);
  classifier.Classify(t.root());
  EXPECT_EQ(ClassLabels(classifier), (Classes{{"one", "two"}, {"one", "two", "three"}}));
}

// The node test decides for records too, not only for items of the walk:
// elements accepted with their descendants keep one record each.
TEST(Classify, AcceptedAncestorsKeepOneRecord) {
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
  t.Find("ul")->text = kLeaf1;
  t.Find("ul")->text_len = 2;
  EXPECT_EQ(Classify(t.root(), HasText), (Classes{{"one", "two"}, {"one", "two", "ul", "three"}}));
}
