#include <gtest/gtest.h>

#include <string>

#include "core/OrvMemory.h"
#include "html/HtmlTestSupport.h"
#include "orvwebpage/OrvHtml.h"
#include "platform/html/OrvPageTaming.h"

namespace {

// " a0=0 a1=1 ..." with the given number of attributes, from index first.
std::string Attributes(int count, int first = 0) {
  std::string out;
  for (int i = first; i < first + count; i++)
    out += " a" + std::to_string(i) + "=" + std::to_string(i);
  return out;
}

// The tamed page, or "(as is)" when no copy was needed.
std::string Tamed(const std::string& page, bool mayBeWide) {
  size_t length = page.size();
  char* copy = OrvTamePage(page.data(), length, mayBeWide);
  if (!copy) return length == page.size() ? "(as is)" : "(length changed without a copy)";
  std::string out(copy, length);
  OrvFreeBytes(copy);
  return out;
}

std::string Times(const std::string& piece, int n) {
  std::string out;
  for (int i = 0; i < n; i++) out += piece;
  return out;
}

}  // namespace

TEST(OrvTamePage, DropsNulBytesAndCutsOverlongTags) {
  const int max = OrvMaxAttributes;
  struct Case {
    const char* what;
    std::string page;
    bool mayBeWide;
    std::string expected;
  } cases[] = {
      {"ordinary page", "<p class=x id=y>text</p>", false, "(as is)"},
      {"NUL bytes dropped", std::string("<p>a\0b</p>\0", 11), false, "<p>ab</p>"},
      {"only NUL bytes", std::string(5, '\0'), false, ""},
      {"a wide page keeps them", std::string("\xFF\xFE<\0p\0", 6), true, "(as is)"},
      {"so does one without a mark", std::string("<\0p\0>\0", 6), true, "(as is)"},
      {"unless bytes are kept", std::string("\xFF\xFE<\0p\0", 6), false, "\xFF\xFE<p"},
      {"narrow page with a NUL while decoding", std::string("<p>x\0</p>", 9), true, "<p>x</p>"},
      {"exactly the most attributes", "<p" + Attributes(max) + ">t", false, "(as is)"},
      {"one too many", "<p" + Attributes(max + 1) + ">t</p>", false,
       "<p" + Attributes(max) + " >t</p>"},
      {"many too many, tag never closed", "<div" + Attributes(max + 500), false,
       "<div" + Attributes(max) + " "},
      {"quoted values with blanks and '>' are one attribute",
       "<p" + Times(" q=\"a > b\"", max) + " last='x' more>t", false,
       "<p" + Times(" q=\"a > b\"", max) + " >t"},
      {"blanks around '=' and bare names count as written",
       "<p" + Times(" b = 1 c", max / 2) + " d>t", false,
       "<p" + Times(" b = 1 c", max / 2) + " >t"},
      {"junk between attributes is not an attribute", "<p" + Times(" \"junk\" 9x", max) + " a>t",
       false, "(as is)"},
      {"inside a comment nothing is cut", "<!-- <p" + Attributes(max + 1) + "> -->", false,
       "(as is)"},
      {"nor in a script", "<script>if (a <b" + Attributes(max + 1) + ") f();</script>", false,
       "(as is)"},
      {"but again after it", "<SCRIPT>x</Script ><i" + Attributes(max + 1) + ">", false,
       "<SCRIPT>x</Script ><i" + Attributes(max) + " >"},
      {"after a style too", "<style>a<b c d</style><i" + Attributes(max + 2) + ">", false,
       "<style>a<b c d</style><i" + Attributes(max) + " >"},
      {"an unclosed script hides the rest", "<script><i" + Attributes(max + 1) + ">", false,
       "(as is)"},
  };
  for (const Case& c : cases) EXPECT_EQ(Tamed(c.page, c.mayBeWide), c.expected) << c.what;
}

TEST(OrvTamePage, MoreCutsThanOnePassHolds) {
  std::string page;
  std::string expected;
  for (int i = 0; i < 150; i++) {
    page += "<b" + Attributes(OrvMaxAttributes + 3) + ">" + std::to_string(i) + "</b>";
    expected += "<b" + Attributes(OrvMaxAttributes) + " >" + std::to_string(i) + "</b>";
  }
  page += std::string("\0", 1);
  EXPECT_EQ(Tamed(page, false), expected);
}

TEST(OrvTamePage, MillionAttributesOpenQuickly) {
  std::string page = "<p" + Attributes(1000000) + ">after</p><i>more</i>";
  OrvHtml doc;
  ASSERT_EQ(doc.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
  var_item* p = doc.root->child->child;
  int attributes = 0;
  for (var_attr* a = p->attr_list; a; a = a->next) attributes++;
  EXPECT_EQ(attributes, OrvMaxAttributes);
  ASSERT_NE(p->child, nullptr);
  EXPECT_EQ(std::string(p->child->text, static_cast<size_t>(p->child->text_len)), "after");
  ASSERT_NE(p->next, nullptr);
  EXPECT_EQ(std::string(p->next->name, static_cast<size_t>(p->next->name_len)), "i");
}
