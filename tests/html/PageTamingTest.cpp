#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "core/OrvOwned.h"
#include "html/HtmlTestSupport.h"
#include "platform/html/OrvPageTaming.h"

namespace {

// " a0=0 a1=1 ..." with the given number of attributes.
std::string Attributes(int count) {
  std::string out;
  for (int i = 0; i < count; i++) out += " a" + std::to_string(i) + "=" + std::to_string(i);
  return out;
}

std::string Times(const std::string& piece, int n) {
  std::string out;
  for (int i = 0; i < n; i++) out += piece;
  return out;
}

// The tamed page, or "(as is)" when no copy was needed.
std::string Tamed(const std::string& page, bool mayBeWide) {
  size_t length = page.size();
  OrvOwned<char> copy = OrvTamePage(page.data(), length, mayBeWide);
  if (!copy) return length == page.size() ? "(as is)" : "(length changed without a copy)";
  return std::string(copy.get(), length);
}

}  // namespace

TEST(OrvTamePage, DropsNulBytesAndCutsOverlongTags) {
  const int max = OrvMaxAttributes;
  const std::string cut = "<p" + Attributes(max) + " >t";
  const std::tuple<const char*, std::string, bool, std::string> cases[] = {
      {"ordinary page", "<p class=x id=y>text</p>", false, "(as is)"},
      {"NUL bytes dropped", std::string("<p>a\0b</p>\0", 11), false, "<p>ab</p>"},
      {"a wide page keeps them", std::string("\xFF\xFE<\0p\0", 6), true, "(as is)"},
      {"so does one without a mark", std::string("<\0p\0>\0", 6), true, "(as is)"},
      {"unless bytes are kept", std::string("\xFF\xFE<\0p\0", 6), false, "\xFF\xFE<p"},
      {"a narrow page while decoding", std::string("<p>x\0</p>", 9), true, "<p>x</p>"},
      {"exactly the most attributes", "<p" + Attributes(max) + ">t", false, "(as is)"},
      {"one too many", "<p" + Attributes(max + 1) + ">t", false, cut},
      {"tag never closed", "<p" + Attributes(max + 500), false, "<p" + Attributes(max) + " "},
      {"quoted values with blanks and '>' are one attribute",
       "<p" + Times(" q=\"a > b\"", max) + " last='x' more>t", false,
       "<p" + Times(" q=\"a > b\"", max) + " >t"},
      {"blanks around '=' and bare names", "<p" + Times(" b = 1 c", max / 2) + " d>t", false,
       "<p" + Times(" b = 1 c", max / 2) + " >t"},
      {"junk between attributes", "<p" + Times(" \"junk\" 9x", max) + " a>t", false, "(as is)"},
      {"nothing cut inside a comment", "<!-- <p" + Attributes(max + 1) + "> -->", false, "(as is)"},
      {"nor in a script", "<script>a <b" + Attributes(max + 1) + "> f();</script>", false,
       "(as is)"},
      {"an unclosed script hides the rest", "<script><p" + Attributes(max + 1) + ">", false,
       "(as is)"},
      {"but after it", "<SCRIPT>x</Script ><p" + Attributes(max + 1) + ">t", false,
       "<SCRIPT>x</Script >" + cut},
      {"after a style too", "<style>a<b c d</style><p" + Attributes(max + 2) + ">t", false,
       "<style>a<b c d</style>" + cut}};
  for (const auto& [what, page, mayBeWide, expected] : cases)
    EXPECT_EQ(Tamed(page, mayBeWide), expected) << what;
}

TEST(OrvTamePage, MoreCutsThanOnePassHolds) {
  std::string page, expected;
  for (int i = 0; i < 150; i++) {
    page += "<b" + Attributes(OrvMaxAttributes + 3) + ">" + std::to_string(i) + "</b>";
    expected += "<b" + Attributes(OrvMaxAttributes) + " >" + std::to_string(i) + "</b>";
  }
  EXPECT_EQ(Tamed(page + std::string(1, '\0'), false), expected);
}

TEST(OrvTamePage, MillionAttributesOpenQuickly) {
  std::string page = "<p" + Attributes(1000000) + ">after</p><i>more</i>";
  OrvHtml doc;
  ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_BYTES), 0);
  std::string kept;
  for (int i = 0; i < OrvMaxAttributes; i++)
    kept += " a" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
  EXPECT_EQ(Dump(doc.root), "html|  body|    p" + kept + "|      \"after\"|    i|      \"more\"");
}
