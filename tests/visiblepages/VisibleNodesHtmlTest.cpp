#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

namespace {

using Classes = std::vector<std::vector<std::string>>;

Classes Read(OrvWebPageVisibleNodes& nodes) {
  Classes out;
  for (int i = 0; i < nodes.GetClassCount(); i++) {
    void* handle = nodes.FetchClass(i);
    out.emplace_back();
    for (int j = 0; j < nodes.GetNodesCount(handle); j++) {
      var_item* item = nullptr;
      nodes.FetchNode(handle, j, item);
      out.back().emplace_back(item->text, size_t(item->text_len));
    }
  }
  return out;
}

Classes ClassifyPage(std::string page, ORV_CHARSET charset = ORV_CHARSET_UTF8) {
  OrvHtml doc;
  if (doc.Open(page.data(), long(page.size()), charset) != 0) return {{"(not opened)"}};
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(doc.root);
  Classes out = Read(nodes);
  nodes.ClearNodes();
  doc.Close();
  return out;
}

}  // namespace

// Parsed pages: the parser adds html, so text directly in body lies at
// depth 3 and makes body's children candidates for blocks. The page class
// follows the depth map: depth 3 was met first but its bucket comes last.
TEST(VisibleNodesHtml, BlocksOfParsedPages) {
  struct Case {
    const char* what;
    std::string page;
    Classes expected;
  } cases[] = {
      {"a list of like entries",
       "<body>Intro<ul><li class=item><a href=/1>First</a> <b>new</b></li>"
       "<li class=item><a href=/2>Second</a></li></ul>",
       {{"First", "new", "Second"}, {"First", "new", "Second", "Intro"}}},
      {"class values compared with letters folded, tags by name",
       "<body>Intro<div><P CLASS=Row><i>a</i></P><p class=rOW><i>b</i></p></div>",
       {{"a", "b"}, {"a", "b", "Intro"}}},
      {"no class attribute, no block",
       "<body>Intro<div><p><i>a</i></p><p><i>b</i></p></div>",
       {{"a", "b", "Intro"}}},
      {"script, style and title text is not visible",
       "<title>T</title><body>Intro<div><p class=r><script>x()</script></p>"
       "<p class=r><style>p{}</style></p></div>",
       {{"Intro"}}},
      {"whitespace between tags makes no item",
       "<body>Intro\n<div>\n  <p class=r>\n    <i>a</i>\n  </p>\n  <p class=r> <i>b</i> "
       "</p>\n</div>\n",
       {{"a", "b"}, {"a", "b", "Intro\n"}}},
      {"entities are decoded in the text handed out",
       "<body>Intro<div><p class=r><i>a &amp; b</i></p><p class=r><i>&lt;c&gt;</i></p></div>",
       {{"a & b", "<c>"}, {"a & b", "<c>", "Intro"}}},
      {"nothing visible", "<title>only a title</title><script>x()</script>", {}},
      {"an empty page", "", {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ClassifyPage(c.page), c.expected) << c.what;
  }
}

// The items handed out belong to the document: they stay readable after the
// classifier has been cleared and destroyed, and the classifier may be
// cleared after the document has gone.
TEST(VisibleNodesHtml, DocumentAndClassifierLiveApart) {
  std::string page = "<body>Intro<ul><li class=e><i>one</i></li><li class=e><i>two</i></li></ul>";
  OrvHtml doc;
  ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
  var_item* item = nullptr;
  {
    OrvWebPageVisibleNodes nodes;
    nodes.ClassifyNodes(doc.root);
    ASSERT_EQ(nodes.GetClassCount(), 2);
    ASSERT_EQ(nodes.FetchNode(nodes.FetchClass(0), 1, item), 1);
  }
  EXPECT_EQ(std::string(item->text, size_t(item->text_len)), "two");
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(doc.root);
  doc.Close();
  nodes.ClearNodes();
  EXPECT_EQ(nodes.GetClassCount(), 0);
}

// Every real page opens, classifies and closes, the same way every time:
// in a fresh object, and again in the same object after ClearNodes.
TEST(VisibleNodesHtml, RealPagesClassifyTheSameEveryTime) {
  std::vector<std::filesystem::path> paths;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages", error))
    if (entry.is_regular_file()) paths.push_back(entry.path());
  ASSERT_FALSE(error) << ORV_DATA_DIR "/pages: " << error.message();
  std::sort(paths.begin(), paths.end());
  ASSERT_GE(paths.size(), 60u);
  size_t withBlocks = 0;
  OrvWebPageVisibleNodes reused;
  for (const auto& path : paths) {
    SCOPED_TRACE(path.filename().string());
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    std::string bytes = text.str();
    for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
      Classes first = ClassifyPage(bytes, charset);
      Classes second = ClassifyPage(bytes, charset);
      EXPECT_EQ(first, second);
      OrvHtml doc;
      std::string copy = bytes;
      ASSERT_EQ(doc.Open(copy.data(), long(copy.size()), charset), 0);
      for (int run = 0; run < 2; run++) {
        reused.ClassifyNodes(doc.root);
        EXPECT_EQ(Read(reused), first);
        reused.ClearNodes();
      }
      doc.Close();
      if (charset == ORV_CHARSET_UTF8 && first.size() > 1) withBlocks++;
      // The page class holds every visible item, so it is the largest.
      if (!first.empty()) {
        for (const auto& c : first) EXPECT_LE(c.size(), first.back().size());
      }
    }
  }
  // Real pages repeat: most have blocks.
  EXPECT_GE(withBlocks, paths.size() / 2);
}
