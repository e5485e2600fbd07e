#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/ItemTree.h"

// A negative length is measured to the NUL. Only the 26 ASCII letters fold,
// also where a signed byte plus 32 would wrap onto one.
TEST(ItemText, CapsEqual) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"ClAsS", "cLaSs", true}, {"class", "clas", false}, {"abc", "abd", false},
      {"z", "Z", true},         {"{", "[", false},        {"@", "`", false},
      {"A", "!", false},        {"\xE9", "\xC9", false},  {"\xE9", "\xE9", true},
      {"\x81", "a", false},     {"a", "\x81", false},     {nullptr, "", true},
      {nullptr, "x", false},    {"ab\0c", "AB", true}};
  for (auto [a, b, equal] : cases)
    EXPECT_EQ(CapsEqual(a, -1, b, -1), equal) << (a ? a : "(null)") << " / " << b;
  EXPECT_TRUE(CapsEqual(nullptr, 0, "xyz", 0));  // a stored 0 is not measured
}

// Spaces only, at both ends; a length below 1 leaves nothing, the pointer
// moved by that length.
TEST(ItemText, TrimBlanks) {
  // Expected: how far the pointer moved, and what is left.
  const std::tuple<std::string, int32_t, std::string> cases[] = {
      {"  ab c  ", 8, "2:ab c"}, {" \tabc\t ", 7, "1:\tabc\t"}, {"    ", 4, "4:"}, {"", 0, "0:"},
      {"  abc  ", 3, "2:a"},     {"  abc", -5, "-5:"},          {"x ", 2, "0:x"},  {"x", 1, "0:x"}};
  for (auto [text, n, expected] : cases) {
    std::string storage = "#####" + text;  // room for a pointer moved back
    const char* p = storage.data() + 5;
    TrimBlanks(p, n);
    EXPECT_EQ(std::to_string(p - storage.data() - 5) + ":" + std::string(p, size_t(n)), expected);
  }
}

TEST(ItemText, CountNonBlankSkipsSpaceLineFeedTab) {
  const std::tuple<const char*, int32_t, int32_t> cases[] = {
      {"a b\tc\nd", 7, 4}, {"\r\f\v", 3, 3}, {"abc", -1, 0}, {"ab\0cd", 5, 5}};
  for (auto [text, length, expected] : cases) EXPECT_EQ(CountNonBlank(text, length), expected);
}

static std::string Value(const var_attr* a) { return a ? a->value : "-"; }

TEST(ItemAttr, FindAttrByNameIsCaseBlindFirstMatch) {
  ItemTree t("div class_=1 klass=2 CLASS=3 class=4 =5 other=6");
  t.Add(nullptr, "div \xC9=7");
  const std::tuple<int, const char*, int32_t, std::string> cases[] = {
      {0, "class", 5, "3"},  {0, "classes", 5, "3"}, {0, "", 0, "5"},     {0, nullptr, -1, "5"},
      {0, "other", -1, "6"}, {0, "x", -1, "-"},      {1, "\xC9", 1, "7"}, {1, "\xE9", 1, "-"}};
  for (const auto& [item, name, length, expected] : cases)
    EXPECT_EQ(Value(FindAttrByName(t[item]->attr_list, name, length)), expected) << name;
}

// By id only: a name "HREF" with another id is no link target.
TEST(ItemAttr, FindLinkAttrTakesTheFirstTargetId) {
  ItemTree t("a title=x href#14=/one href=/two\na HREF#3=/caps\na");
  EXPECT_EQ(Value(FindLinkAttr(t[0]->attr_list)) + Value(FindLinkAttr(t[1]->attr_list)) +
                Value(FindLinkAttr(t[2]->attr_list)),
            "/one--");
}

// Names and values compared with letters folded, values trimmed of spaces.
TEST(ItemAttr, IsEqualAttr) {
  ItemTree t(R"(div class="  Row Item " CLASS="row item" class=row)"
             R"( class="row\t" class=" " class id=row)");
  var_attr* a[7];
  var_attr* at = t.root()->attr_list;
  for (var_attr*& slot : a) slot = at, at = at->next;
  const std::tuple<const var_attr*, const var_attr*, bool> cases[] = {
      {nullptr, nullptr, true}, {nullptr, a[2], false}, {a[2], nullptr, false},
      {a[0], a[1], true},       {a[1], a[2], false},    {a[2], a[3], false},
      {a[4], a[5], true},       {a[2], a[6], false}};
  for (auto [x, y, equal] : cases)
    EXPECT_EQ(IsEqualAttr(x, y), equal) << (x ? x->value : "(null)") << "/" << (y ? y->value : "");
}
