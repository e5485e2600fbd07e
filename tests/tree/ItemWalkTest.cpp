#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "orvwebpage/OrvItem.h"
#include "support/ItemTree.h"

namespace {

using Visits = std::vector<std::pair<std::string, int32_t>>;

std::string Label(const var_item* item) {
  if (item->tag_id == 0 && item->text)
    return std::string(item->text, static_cast<size_t>(item->text_len));
  return std::string(item->name, static_cast<size_t>(item->name_len));
}

void Record(var_item* item, int32_t depth, void* user) {
  static_cast<Visits*>(user)->emplace_back(Label(item), depth);
}

}  // namespace

TEST(WalkItems, ParentsFirstSiblingsInOrder) {
  const char* forest = R"(
    html
      head
        title
          "T"
      body
        div
          p
            "one"
          p
        ul
          li
            a href=/x
              "link"
    tail
      "after"
    last
  )";
  struct Case {
    const char* start;  // label of the first item, "" for null
    int32_t depth;
    Visits expected;
  } cases[] = {
      {"html",
       1,
       {{"html", 1},
        {"head", 2},
        {"title", 3},
        {"T", 4},
        {"body", 2},
        {"div", 3},
        {"p", 4},
        {"one", 5},
        {"p", 4},
        {"ul", 3},
        {"li", 4},
        {"a", 5},
        {"link", 6},
        {"tail", 1},
        {"after", 2},
        {"last", 1}}},
      {"body",
       7,
       {{"body", 7},
        {"div", 8},
        {"p", 9},
        {"one", 10},
        {"p", 9},
        {"ul", 8},
        {"li", 9},
        {"a", 10},
        {"link", 11}}},
      {"last", 1, {{"last", 1}}},
      {"tail", -1, {{"tail", -1}, {"after", 0}, {"last", -1}}},
      {"", 1, {}},
  };
  ItemTree t(forest);
  for (const Case& c : cases) {
    Visits seen;
    var_item* first = *c.start ? t.Find(c.start) : nullptr;
    WalkItems(first, c.depth, Record, &seen);
    EXPECT_EQ(seen, c.expected) << "from " << c.start;
  }
}

TEST(WalkItems, MillionDeepChainWalksInOrder) {
  const int32_t height = 1000000;
  ItemTree t;
  var_item* innermost = t.Nest(nullptr, height, "div");
  t.Add(innermost, "\"deep\"");
  t.Add(nullptr, "\"top\"");
  struct State {
    int32_t calls = 0;
    bool ordered = true;
    var_item* expectNext;
    Visits tail;
  } state{0, true, t.root(), {}};
  WalkItems(
      t.root(), 1,
      [](var_item* item, int32_t depth, void* user) {
        State* s = static_cast<State*>(user);
        s->calls++;
        if (s->calls <= 1000000) {
          s->ordered = s->ordered && item == s->expectNext && depth == s->calls;
          s->expectNext = item->child;
        } else {
          s->tail.emplace_back(Label(item), depth);
        }
      },
      &state);
  EXPECT_EQ(state.calls, height + 2);
  EXPECT_TRUE(state.ordered);
  EXPECT_EQ(state.tail, (Visits{{"deep", height + 1}, {"top", 1}}));
}

TEST(FindAncestor, NearestProperAncestor) {
  ItemTree t(R"(
    a
      div
        a
          span
            "text"
        "beside"
    a
  )");
  // t[0] outer a, t[1] div, t[2] inner a, t[3] span, t[4] "text", t[5] "beside", t[6] a
  struct Case {
    int from;
    uint16_t tag;
    int expected;  // -1: none
    int32_t fromDepth;
    int32_t expectedDepth;
  } cases[] = {
      {4, ORV_TAG_LINK, 2, 5, 3},
      {5, ORV_TAG_LINK, 0, 3, 1},
      {3, ORV_TAG_LINK, 2, 10, 9},
      {4, t[1]->tag_id, 1, 5, 2},
      {4, 999, -1, 5, 0},
      {2, ORV_TAG_LINK, 0, 3, 1},
      {0, ORV_TAG_LINK, -1, 1, 0},  // the item itself is never its own ancestor
      {6, ORV_TAG_LINK, -1, 1, 0},
      {4, t[1]->tag_id, 1, INT32_MIN + 2, INT32_MAX},  // depth arithmetic wraps
  };
  for (const Case& c : cases) {
    var_item* want = c.expected < 0 ? nullptr : t[static_cast<size_t>(c.expected)];
    var_item* from = t[static_cast<size_t>(c.from)];
    EXPECT_EQ(FindAncestor(from, c.tag), want) << c.from;
    var_item_pos found = FindAncestorPos(var_item_pos{from, c.fromDepth}, c.tag);
    EXPECT_EQ(found.item, want) << c.from;
    if (want) {
      EXPECT_EQ(found.depth, c.expectedDepth) << c.from;
    }
  }
}

TEST(IsVisibleText, DirectParentAndNameDecide) {
  ItemTree t(R"(
    body
      "x"
      script
        "s"
        span
          "inside script"
      style
        "st"
      title
        "ti"
      noscript#88
        "n"
      p
        "$text"
      p
        "  "
    "top"
  )");
  struct Case {
    const char* label;
    bool visible;
  } cases[] = {
      {"x", true},    {"s", false},  {"inside script", true},  // only the direct parent counts
      {"st", false},  {"ti", false}, {"n", true},
      {"  ", true},    // blanks are text all the same
      {"top", false},  // no parent
  };
  for (const Case& c : cases) EXPECT_EQ(IsVisibleText(t.Find(c.label)), c.visible) << c.label;

  // Field by field, starting from a visible run.
  var_item* run = t.Find("x");
  struct Change {
    const char* what;
    void (*apply)(var_item*);
    bool visible;
  } changes[] = {
      {"text_len 0", [](var_item* i) { i->text_len = 0; }, false},
      {"negative text_len", [](var_item* i) { i->text_len = -1; }, false},
      {"tag 1", [](var_item* i) { i->tag_id = 1; }, false},
      {"other name", [](var_item* i) { i->name = const_cast<char*>("$tex!"); }, false},
      {"capital name", [](var_item* i) { i->name = const_cast<char*>("$TeXt"); }, true},
      {"measured name", [](var_item* i) { i->name_len = -1; }, true},
      {"long name",
       [](var_item* i) {
         i->name = const_cast<char*>("$texts");
         i->name_len = -1;
       },
       false},
      {"null name",
       [](var_item* i) {
         i->name = nullptr;
         i->name_len = -1;
       },
       false},
  };
  for (const Change& c : changes) {
    var_item copy = *run;
    c.apply(&copy);
    EXPECT_EQ(IsVisibleText(&copy), c.visible) << c.what;
  }
}
