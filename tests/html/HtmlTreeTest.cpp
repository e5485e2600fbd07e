#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "html/HtmlTestSupport.h"
#include "support/Cases.h"

// Rows: what, charset (bytes or utf8), Content-Type, page, the tree it opens to.
TEST(OrvHtml, PagesOpenToTheirTrees) {
  const auto rows = ReadCases(ORV_CASES_DIR "/html/trees.tsv", 5);
  for (const auto& f : rows) {
    std::string page = Unescape(f[3]);
    OrvHtml doc;
    ORV_CHARSET charset = f[1] == "utf8" ? ORV_CHARSET_UTF8 : ORV_CHARSET_BYTES;
    ASSERT_EQ(
        doc.Open(page.data(), long(page.size()), charset, f[2].empty() ? nullptr : f[2].c_str()),
        0);
    EXPECT_EQ(Dump(doc.root), f[4]) << f[0];
  }
  EXPECT_GE(rows.size(), 30u);
}

// Elements and attributes by name, each name with the numbers it was given.
using NameNumbers = std::map<std::string, std::set<int>>;

void Number(var_item* item, int32_t, void* user) {
  NameNumbers& n = *static_cast<NameNumbers*>(user);
  n[std::string(item->name, size_t(item->name_len))].insert(item->tag_id);
  for (var_attr* a = item->attr_list; a; a = a->next)
    n["@" + std::string(a->name, size_t(a->name_len))].insert(a->attr_id);
}

// The reserved numbers go to their elements and to href alone; equal names
// get equal numbers, also across documents.
TEST(OrvHtml, TagAndAttributeNumbers) {
  std::string pages[] = {
      "<title>t</title><style>s</style><script>x</script><a href=/x name=n>l</a>"
      "<div class=c><custom-el data-q=1>e</custom-el></div><area href=/y>",
      "<div><custom-el></custom-el></div>"};
  NameNumbers numbers;
  for (std::string& page : pages) {
    OrvHtmlDoc doc;
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
    WalkItems(doc.root, 1, Number, &numbers);
  }
  NameNumbers reserved = {{"$text", {0}},  {"a", {60}},     {"script", {87}},
                          {"style", {92}}, {"title", {93}}, {"@href", {14}}};
  for (const auto& [name, given] : numbers) {
    EXPECT_EQ(given.size(), 1u) << name;
    if (reserved.count(name)) {
      EXPECT_EQ(given, reserved[name]) << name;
    }
    for (int r : name[0] == '@' ? std::set<int>{14} : std::set<int>{0, 60, 87, 92, 93})
      EXPECT_TRUE(reserved.count(name) || !given.count(r)) << name;
  }
  EXPECT_EQ(numbers.size(), 15u);
}
