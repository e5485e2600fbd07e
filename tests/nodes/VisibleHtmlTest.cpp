// The lean tree of visible texts gives the classes, texts and paths of the
// whole tree, and holds nothing the analysis does not read.

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "NodeClasses.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvVisibleBlocks.h"
#include "orvwebpage/OrvVisibleHtml.h"
#include "support/Cases.h"

namespace {

// Each class's path, then its texts.
Classes Blocks(var_item* root) {
  OrvVisibleBlocks blocks;
  blocks.Read(root);
  Classes out;
  OrvString path;
  for (int c = 0; c < blocks.GetClassCount(); c++) {
    blocks.GetPath(c, path);
    out.emplace_back(1, std::string(path.buf ? path.buf : "", size_t(path.len)));
    for (int i = 0; i < blocks.GetTextCount(c); i++) {
      const char* text = nullptr;
      int32_t length = 0;
      blocks.GetText(c, i, text, length);
      out.back().emplace_back(text, size_t(length));
    }
  }
  return out;
}

// Elements with no visible text below them, and attributes other than id and
// class, by name.
std::vector<std::string> Unread(var_item* root) {
  std::vector<std::string> out;
  std::vector<var_item*> stack;
  for (var_item* item = root; item; item = item->next) stack.push_back(item);
  while (!stack.empty()) {
    var_item* item = stack.back();
    stack.pop_back();
    std::string name = Label(item);
    if (item->tag_id == 0 ? !IsVisibleText(item) : !item->child) out.push_back(name);
    for (var_attr* attr = item->attr_list; attr; attr = attr->next) {
      std::string attrName(attr->name, size_t(MeasuredLen(attr->name, attr->name_len)));
      if (attrName != "id" && attrName != "class") out.push_back(name + "@" + attrName);
    }
    for (var_item* child = item->child; child; child = child->next) stack.push_back(child);
  }
  return out;
}

void ExpectSameClasses(const std::string& what, const std::string& page) {
  for (ORV_CHARSET charset : {ORV_CHARSET_UTF8, ORV_CHARSET_BYTES}) {
    OrvHtml whole;
    OrvVisibleHtml lean;
    std::string copy = page;
    ASSERT_EQ(whole.Open(copy.data(), long(copy.size()), charset), 0) << what;
    ASSERT_EQ(lean.Open(page.data(), long(page.size()), charset), 0) << what;
    EXPECT_EQ(Classify(lean.root), Classify(whole.root)) << what;
    EXPECT_EQ(Blocks(lean.root), Blocks(whole.root)) << what;
    EXPECT_EQ(Unread(lean.root), std::vector<std::string>()) << what;
  }
}

// Markup of every kind the lean tree treats apart: repeated and nested
// blocks, attributes it keeps and drops, texts where none is shown, runs of
// whitespace, misnested and stray end tags.
std::string RandomPage(std::mt19937& random) {
  static const char* const kPieces[] = {"<div>",
                                        "<div class=a>",
                                        "<div class=b id=m>",
                                        "<DIV CLASS=a>",
                                        "<ul class=l>",
                                        "<li>",
                                        "<li class=i>",
                                        "<li class=i data-x=1>",
                                        "<p>",
                                        "<span>",
                                        "<a href=/x>",
                                        "<b>",
                                        "<br>",
                                        "</div>",
                                        "</li>",
                                        "</ul>",
                                        "</p>",
                                        "</span>",
                                        "</a>",
                                        "</b>",
                                        "</em>",
                                        "text",
                                        "two words",
                                        " ",
                                        "\n  ",
                                        "&amp;",
                                        "<script>var a = '<p>';</script>",
                                        "<style>p{}</style>",
                                        "<title>t</title>",
                                        "<!-- c -->",
                                        "<table><tr><td class=c>",
                                        "</td></tr></table>",
                                        "\xe9"};
  std::uniform_int_distribution<size_t> pick(0, std::size(kPieces) - 1);
  std::uniform_int_distribution<int> length(0, 80);
  std::string page;
  for (int n = length(random); n > 0; n--) page += kPieces[pick(random)];
  return page;
}

}  // namespace

TEST(OrvVisibleHtml, GivesTheClassesOfTheWholeTree) {
  std::ifstream in(ORV_CASES_DIR "/nodes/blocks.json");
  for (const auto& c : nlohmann::json::parse(in))
    if (c.contains("html")) ExpectSameClasses(c["name"], c["html"]);
  for (const auto& file : RealPagePaths()) ExpectSameClasses(file.filename(), ReadFile(file));
  std::mt19937 random(7);
  for (int i = 0; i < 3000; i++)
    ExpectSameClasses("random page " + std::to_string(i), RandomPage(random));
}

TEST(OrvVisibleHtml, BareMarkupCostsNoItems) {
  std::string page;
  for (int i = 0; i < 1000000; i++) page += "<div class=x>";
  page += "<script>hidden</script><p id=a class=b style=c>shown";
  OrvVisibleHtml lean;
  ASSERT_EQ(lean.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
  int32_t depth = 0;
  var_item* text = lean.root;
  for (; text && text->child; text = text->child) depth++;
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(Label(text), "shown");
  EXPECT_EQ(Label(text->parent), "p");
  const var_attr* cls = FindAttrByName(text->parent->parent->attr_list, "class", 5);
  ASSERT_NE(cls, nullptr);  // each of the run of like tags keeps its own
  EXPECT_EQ(std::string(cls->value), "x");
  EXPECT_EQ(Label(lean.root->child), "body");
  EXPECT_EQ(depth, 1000003);  // html, body, the divs and p
  EXPECT_EQ(lean.Close(), 0);
  EXPECT_EQ(lean.root, nullptr);
}
