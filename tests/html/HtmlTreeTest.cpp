#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "html/HtmlTestSupport.h"

namespace {

// \xNN, \0, \n, \r, \t and \\ as in C.
std::string Unescape(const std::string& s) {
  std::string out;
  for (size_t i = 0; i < s.size(); i++) {
    char c = s[i] == '\\' && i + 1 < s.size() ? s[++i] : 0;
    if (c == 'x') out += char(std::stoi(s.substr(i + 1, 2), nullptr, 16)), i += 2;
    if (c == 'x') continue;
    out += !c ? s[i] : c == '0' ? '\0' : c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
  }
  return out;
}

}  // namespace

// Rows: what, charset (bytes or utf8), Content-Type, page, the tree it opens to.
TEST(OrvHtml, PagesOpenToTheirTrees) {
  std::ifstream in(ORV_CASES_DIR "/html/trees.tsv");
  std::string row;
  int rows = 0;
  while (std::getline(in, row)) {
    std::vector<std::string> f;
    std::istringstream cells(row);
    for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
    if (row.empty() || row[0] == '#') continue;
    ASSERT_GE(f.size(), 4u) << row;
    std::string page = Unescape(f[3]);
    OrvHtml doc;
    ORV_CHARSET charset = f[1] == "utf8" ? ORV_CHARSET_UTF8 : ORV_CHARSET_BYTES;
    ASSERT_EQ(
        doc.Open(page.data(), long(page.size()), charset, f[2].empty() ? nullptr : f[2].c_str()),
        0);
    EXPECT_EQ(Dump(doc.root), f.size() > 4 ? f[4] : "") << f[0];
    rows++;
  }
  EXPECT_GE(rows, 30);
}

// Elements and attributes by name, each name with the numbers it was given.
using Numbers = std::map<std::string, std::set<int>>;

void Number(var_item* item, int32_t, void* user) {
  Numbers& n = *static_cast<Numbers*>(user);
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
  Numbers numbers;
  for (std::string& page : pages) {
    OrvHtmlDoc doc;
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
    WalkItems(doc.root, 1, Number, &numbers);
  }
  Numbers reserved = {{"$text", {0}},  {"a", {60}},     {"script", {87}},
                      {"style", {92}}, {"title", {93}}, {"@href", {14}}};
  for (const auto& [name, given] : numbers) {
    EXPECT_EQ(given.size(), 1u) << name;
    if (reserved.count(name)) EXPECT_EQ(given, reserved[name]) << name;
    for (int r : name[0] == '@' ? std::set<int>{14} : std::set<int>{0, 60, 87, 92, 93})
      EXPECT_TRUE(reserved.count(name) || !given.count(r)) << name;
  }
  EXPECT_EQ(numbers.size(), 15u);
}
