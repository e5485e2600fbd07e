#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "orvwebpage/OrvItem.h"

// The fields keep the order, widths and signedness the analysers read them with.
static_assert(std::is_same_v<decltype(var_item::tag_id), uint16_t>);
static_assert(std::is_same_v<decltype(var_item::name_len), int32_t>);
static_assert(std::is_same_v<decltype(var_item::text_len), int32_t>);
static_assert(sizeof(var_item::reserved0) == 26 && sizeof(var_item::reserved1) == 4);
static_assert(offsetof(var_item, attr_list) < offsetof(var_item, next));
static_assert(offsetof(var_item, next) < offsetof(var_item, child));
static_assert(offsetof(var_item, child) < offsetof(var_item, parent));
static_assert(offsetof(var_item, parent) < offsetof(var_item, name_len));
static_assert(offsetof(var_item, name_len) < offsetof(var_item, name));
static_assert(offsetof(var_item, name) < offsetof(var_item, text_len));
static_assert(offsetof(var_item, text_len) < offsetof(var_item, text));
static_assert(std::is_same_v<decltype(var_attr::attr_id), uint16_t>);
static_assert(std::is_same_v<decltype(var_attr::name_len), int32_t>);
static_assert(std::is_same_v<decltype(var_attr::value_len), int32_t>);
static_assert(sizeof(var_attr::reserved0) == 30 && sizeof(var_attr::reserved1) == 8);
static_assert(offsetof(var_attr, next) < offsetof(var_attr, name_len));
static_assert(offsetof(var_attr, name) < offsetof(var_attr, value_len));
static_assert(offsetof(var_attr, value_len) < offsetof(var_attr, value));
static_assert(offsetof(var_item_pos, item) == 0 && offsetof(var_item_pos, depth) == sizeof(void*));

TEST(MeasuredLen, StoredOrMeasured) {
  struct Case {
    const char* text;
    int32_t length;
    int32_t expected;
  } cases[] = {
      {"abc", 3, 3},    {"abc", 1, 1},    {"abc", 0, 0},   {"abc", -1, 3},
      {"ab\0c", -7, 2}, {nullptr, -1, 0}, {nullptr, 0, 0}, {"", -1, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MeasuredLen(c.text, c.length), c.expected)
        << (c.text ? c.text : "(null)") << " " << c.length;
  }
}

TEST(CapsEqual, OnlyAsciiLettersFold) {
  struct Case {
    const char* a;
    int32_t aLength;
    const char* b;
    int32_t bLength;
    bool equal;
  } cases[] = {
      {"class", 5, "CLASS", 5, true},
      {"ClAsS", -1, "cLaSs", 5, true},
      {"class", 5, "class", 4, false},
      {"abc", 3, "abd", 3, false},
      // '@' and '`' sit 32 apart, as do '[' and '{': they are not letters.
      {"@", 1, "`", 1, false},
      {"[", 1, "{", 1, false},
      {"^", 1, "~", 1, false},
      // Bytes above 0x7F match only themselves: no folding of Latin-1 letters.
      {"\xE9", 1, "\xC9", 1, false},
      {"\xE9", 1, "\xE9", 1, true},
      {"\xC1", 1, "\xE1", 1, false},
      // A signed byte plus 32 must not wrap into a letter.
      {"a", 1, "\x41", 1, true},
      {"A", 1, "\x61", 1, true},
      {"\x81", 1, "a", 1, false},
      {"a", 1, "\x81", 1, false},
      // Empty texts are equal whatever the pointers hold.
      {nullptr, 0, "xyz", 0, true},
      {nullptr, -1, "", -1, true},
      {nullptr, -1, "x", -1, false},
      {"$TEXT", 5, "$text", 5, true},
      {"$text", 5, "4text", 5, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CapsEqual(c.a, c.aLength, c.b, c.bLength), c.equal)
        << (c.a ? c.a : "(null)") << " vs " << (c.b ? c.b : "(null)");
  }
}

TEST(TrimBlanks, OnlySpacesAtBothEnds) {
  struct Case {
    std::string text;
    int32_t length;         // -2: take the text's size
    ptrdiff_t expectStart;  // offset of the result from the old pointer
    std::string expected;
  } cases[] = {
      {"  ab c  ", -2, 2, "ab c"},
      {"abc", -2, 0, "abc"},
      {" \tabc\t ", -2, 1, "\tabc\t"},
      {"\nx\r", -2, 0, "\nx\r"},
      {"    ", -2, 4, ""},  // blanks only: the pointer stands at the old end
      {"", 0, 0, ""},
      {"  abc  ", 3, 2, "a"},  // only the given length is looked at
      {"  abc", -1, -1, ""},   // a negative length is not measured: empty, moved back
      {"  abc", -5, -5, ""},
      {"x", -2, 0, "x"},
      {" x", -2, 1, "x"},
      {"x ", -2, 0, "x"},
  };
  for (const Case& c : cases) {
    std::string storage = "#####" + c.text;  // room in front for a pointer moved back
    const char* base = storage.data() + 5;
    const char* p = base;
    int32_t n = c.length == -2 ? static_cast<int32_t>(c.text.size()) : c.length;
    TrimBlanks(p, n);
    EXPECT_EQ(p - base, c.expectStart) << '"' << c.text << "\" " << c.length;
    EXPECT_EQ(std::string(p, static_cast<size_t>(n)), c.expected) << '"' << c.text << '"';
  }
}

TEST(TrimBlanks, MutablePointerOverload) {
  char text[] = "  hi ";
  char* p = text;
  int32_t n = 5;
  TrimBlanks(p, n);
  EXPECT_EQ(p, text + 2);
  EXPECT_EQ(n, 2);
}

TEST(CountNonBlank, BlankSetIsSpaceLineFeedTab) {
  struct Case {
    const char* text;
    int32_t length;
    int32_t expected;
  } cases[] = {
      {"\r\n", 2, 1},   {" \t\n", 3, 0},  {"a b\tc\nd", 7, 4},
      {"\f\v", 2, 2},   {"abc", 0, 0},    {"abc", -1, 0},  // below 1: not measured
      {nullptr, -1, 0}, {"ab\0cd", 5, 5}, {"\xA0\xA0", 2, 2},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CountNonBlank(c.text, c.length), c.expected) << c.length;
  }
}
