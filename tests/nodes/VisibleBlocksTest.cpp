#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "NodeClasses.h"
#include "orvwebpage/OrvBlockTextWalk.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItemPath.h"
#include "orvwebpage/OrvVisibleBlocks.h"
#include "support/Cases.h"
#include "support/ItemTree.h"

namespace {

std::vector<std::string> Paths(const OrvVisibleBlocks& blocks) {
  std::vector<std::string> out;
  OrvString path;
  for (int c = 0; c < blocks.GetClassCount(); c++) {
    EXPECT_EQ(blocks.GetPath(c, path), 1);
    out.emplace_back(path.buf, size_t(path.len));
  }
  return out;
}

// What a walk hands over: each class's path, then its texts.
struct WalkedClasses : OrvBlockTextSink {
  std::vector<std::string> paths;
  std::vector<std::vector<std::string>> texts;
  void OnClass(const char* path, int32_t length) override {
    paths.emplace_back(path, size_t(length));
    texts.emplace_back();
  }
  void OnText(const char* text, int32_t length) override {
    ASSERT_FALSE(texts.empty()) << "a text before any class";
    texts.back().emplace_back(text, size_t(length));
  }
};

// " > "-separated steps of a path.
bool StartsWithSteps(const std::string& path, const std::string& prefix) {
  return path == prefix || path.rfind(prefix + " > ", 0) == 0;
}

}  // namespace

// Each case is an HTML page or a tree in ItemTree lines, with the path and
// the texts of every class, the page class (empty path) last.
TEST(VisibleBlocks, Cases) {
  std::ifstream in(ORV_CASES_DIR "/nodes/blocks.json");
  nlohmann::json cases = nlohmann::json::parse(in, nullptr, false);
  ASSERT_TRUE(cases.is_array() && !cases.empty());
  for (const auto& c : cases) {
    SCOPED_TRACE(c["name"].get<std::string>());
    OrvVisibleBlocks blocks;
    OrvHtml doc;
    std::string tree;
    for (const auto& line : c.value("tree", nlohmann::json::array()))
      tree += line.get<std::string>() + "\n";
    ItemTree t(tree);
    if (c.contains("html")) {
      std::string page = c["html"];
      ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
      blocks.Read(doc.root);
    } else {
      blocks.Read(t.root());
    }
    EXPECT_EQ(Paths(blocks), c["paths"].get<std::vector<std::string>>());
    WalkedClasses walked;
    OrvWalkBlockTexts(blocks, walked);
    EXPECT_EQ(walked.paths, c["paths"].get<std::vector<std::string>>());
    EXPECT_EQ(walked.texts, c["texts"].get<std::vector<std::vector<std::string>>>());
    OrvString path("kept", 4);
    EXPECT_EQ(blocks.GetPath(blocks.GetClassCount(), path), 0);
    EXPECT_EQ(path.len, 0);
  }
}

// On every real page the classes hold the visible-node classes' texts, in
// their order, and a block's path leads to every one of its texts; a second
// Read forgets the first page.
TEST(VisibleBlocks, RealPagesKeepTheClassesAndPathsLeadToTheTexts) {
  OrvVisibleBlocks blocks;
  OrvHtml doc;
  OrvString parentPath;
  size_t blockCount = 0;
  for (const auto& file : RealPagePaths()) {
    SCOPED_TRACE(file.filename().string());
    std::string page = ReadFile(file);
    ASSERT_EQ(doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
    OrvWebPageVisibleNodes nodes;
    nodes.ClassifyNodes(doc.root);
    auto items = Items(nodes);
    blocks.Read(doc.root);
    ASSERT_EQ(blocks.GetClassCount(), int(items.size()));
    std::vector<std::string> paths = Paths(blocks);
    for (size_t c = 0; c < items.size(); c++) {
      ASSERT_EQ(blocks.GetTextCount(int(c)), int(items[c].size()));
      bool isPage = c + 1 == items.size();
      EXPECT_EQ(paths[c].empty(), isPage);
      blockCount += !isPage;
      for (size_t i = 0; i < items[c].size(); i++) {
        const char* text = nullptr;
        int32_t length = -1;
        ASSERT_EQ(blocks.GetText(int(c), int(i), text, length), 1);
        EXPECT_EQ(text, items[c][i]->text);
        if (isPage) continue;
        OrvItemPath(items[c][i]->parent, parentPath);
        EXPECT_TRUE(StartsWithSteps(std::string(parentPath.buf, size_t(parentPath.len)), paths[c]))
            << paths[c];
      }
    }
  }
  EXPECT_GT(blockCount, 100u);
}
