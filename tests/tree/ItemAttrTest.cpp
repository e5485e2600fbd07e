#include <gtest/gtest.h>

#include <string>

#include "orvwebpage/OrvItem.h"
#include "support/ItemTree.h"

namespace {

// Index of the attribute in the list, -1 for null.
int IndexOf(var_attr* head, var_attr* found) {
  int i = 0;
  for (var_attr* a = head; a; a = a->next, i++) {
    if (a == found) return i;
  }
  return found ? -2 : -1;
}

}  // namespace

TEST(FindAttrByName, CaseBlindFirstMatch) {
  ItemTree t(R"(
    div id=1 CLASS=first class=second
    div clasS=x
    div clas5=x klass=y class_=z
    div href=/x
    div =empty-name other=1
    div
  )");
  t.Add(nullptr, "div \xC9=big");
  struct Case {
    int item;
    const char* name;
    int32_t length;
    int expected;
  } cases[] = {
      {0, "class", 5, 1},  // capitals match, and the first of two wins
      {0, "CLASS", -1, 1},  {0, "id", 2, 0},
      {0, "classes", 5, 1},                       // only the given length counts
      {1, "class", 5, 0},   {2, "class", 5, -1},  // same length, a non-letter differs
      {3, "href", 4, 0},    {3, "hre", 3, -1},
      {4, "", 0, 0},        {4, nullptr, -1, 0},  // measured: length 0 matches the empty name only
      {3, nullptr, -1, -1}, {4, "other", -1, 1},
      {5, "class", 5, -1},                       // no attributes at all
      {6, "\xC9", 1, 0},    {6, "\xE9", 1, -1},  // non-ASCII letters do not fold
  };
  for (const Case& c : cases) {
    var_attr* head = t[c.item]->attr_list;
    EXPECT_EQ(IndexOf(head, FindAttrByName(head, c.name, c.length)), c.expected)
        << "item " << c.item << " name " << (c.name ? c.name : "(null)");
  }
  EXPECT_EQ(FindAttrByName(nullptr, "class", 5), nullptr);
}

TEST(FindAttrByName, NullNamesInTheList) {
  ItemTree t("div x=1 class=2");
  var_attr* head = t.root()->attr_list;
  head->name = nullptr;
  head->name_len = -1;  // measures as 0
  EXPECT_EQ(FindAttrByName(head, "", 0), head);
  EXPECT_EQ(FindAttrByName(head, "class", 5), head->next);
}

TEST(FindLinkAttr, FirstWithTargetId) {
  ItemTree t(R"(
    a title=x href=/one href#14=/two
    a HREF=/caps
    a src#13=x data#15=y
    a
    div link#14=z
  )");
  struct Case {
    int item;
    int expected;
  } cases[] = {{0, 1}, {1, -1} /* found by id, never by name */, {2, -1}, {3, -1}, {4, 0}};
  for (const Case& c : cases) {
    var_attr* head = t[c.item]->attr_list;
    EXPECT_EQ(IndexOf(head, FindLinkAttr(head)), c.expected) << "item " << c.item;
  }
  EXPECT_EQ(FindLinkAttr(nullptr), nullptr);
}

TEST(IsEqualAttr, TrimmedCaseBlindValues) {
  ItemTree t(R"(
    div class="  Row Item " CLASS="row item" class=row
    div class=row class="row " class="row\t" class=" " class id=row class=Row
  )");
  var_attr* a = t[0]->attr_list;
  var_attr* row = t[1]->attr_list;
  var_attr* rowBlank = row->next;
  var_attr* rowTab = rowBlank->next;
  var_attr* blanks = rowTab->next;
  var_attr* empty = blanks->next;
  var_attr* idRow = empty->next;
  var_attr* capRow = idRow->next;
  struct Case {
    const var_attr* x;
    const var_attr* y;
    bool equal;
  } cases[] = {
      {nullptr, nullptr, true},  {nullptr, row, false},
      {row, nullptr, false},     {row, rowBlank, true},
      {row, capRow, true},       {row, rowTab, false},  // a tab is not trimmed
      {blanks, empty, true},  // blanks only and empty: both empty once trimmed
      {row, idRow, false},    // same value, other name
      {row, empty, false},       {a, a->next, true},
      {a, a->next->next, false},  // "Row Item" against "row"
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IsEqualAttr(c.x, c.y), c.equal)
        << (c.x ? c.x->value : "(null)") << " / " << (c.y ? c.y->value : "(null)");
  }
  // Values with inner blanks stay compared whole.
  var_attr inner = *a;
  std::string v = "row  item";
  inner.value = v.data();
  inner.value_len = static_cast<int32_t>(v.size());
  EXPECT_FALSE(IsEqualAttr(a, &inner));
  v = "ROW ITEM  ";
  inner.value_len = static_cast<int32_t>(v.size());
  EXPECT_TRUE(IsEqualAttr(a, &inner));
}

TEST(IsEqualAttr, NegativeValueLengthTrimsToEmpty) {
  ItemTree t("div class=abc class=abc class");
  var_attr* x = t.root()->attr_list;
  var_attr* y = x->next;
  var_attr* empty = y->next;
  y->value_len = -1;  // NUL-terminated "abc", but trimming does not measure it
  EXPECT_FALSE(IsEqualAttr(x, y));
  EXPECT_TRUE(IsEqualAttr(y, empty));
  x->name_len = -1;  // names are measured
  EXPECT_TRUE(IsEqualAttr(x, x));
  EXPECT_TRUE(IsEqualAttr(empty, y));
}
