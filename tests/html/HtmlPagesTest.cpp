#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"

namespace {

struct Summary {
  int64_t items = 0;
  int64_t texts = 0;
  int64_t links = 0;
  int64_t linkTargets = 0;
  uint64_t textHash = 1469598103934665603ull;
  bool sound = true;

  bool operator==(const Summary&) const = default;
};

void Summarise(var_item* item, int32_t, void* user) {
  Summary* s = static_cast<Summary*>(user);
  s->items++;
  if (item->tag_id == 0) {
    s->texts++;
    bool blank = true;
    for (int32_t i = 0; i < item->text_len; i++) {
      unsigned char c = static_cast<unsigned char>(item->text[i]);
      s->textHash = (s->textHash ^ c) * 1099511628211ull;
      blank = blank && (c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f');
    }
    s->sound = s->sound && !blank && item->parent && !item->child && item->name_len == 5;
  } else {
    s->sound = s->sound && item->name_len > 0 && item->name && item->text == nullptr;
  }
  if (item->tag_id == ORV_TAG_LINK) {
    s->links++;
    if (FindLinkAttr(item->attr_list)) s->linkTargets++;
  }
  for (var_attr* a = item->attr_list; a; a = a->next) {
    s->sound = s->sound && a->name && a->name_len > 0 && a->value && a->value_len >= 0;
  }
}

std::vector<std::filesystem::path> Pages() {
  std::vector<std::filesystem::path> pages;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages")) {
    if (entry.is_regular_file()) pages.push_back(entry.path());
  }
  std::sort(pages.begin(), pages.end());
  return pages;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

Summary OpenAndSummarise(OrvBitsDoc& doc, int (*open)(OrvBitsDoc&, std::string&),
                         std::string page) {
  Summary s;
  EXPECT_EQ(open(doc, page), 0);
  WalkItems(doc.root, 1, Summarise, &s);
  doc.Close();
  return s;
}

// Start tags of `a` as written: "<a" in either case, then a blank, '>' or '/'.
int64_t CountLinkTags(const std::string& page) {
  int64_t n = 0;
  for (size_t i = 0; i + 2 < page.size(); i++) {
    if (page[i] != '<' || (page[i + 1] != 'a' && page[i + 1] != 'A')) continue;
    char c = page[i + 2];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '>' || c == '/') n++;
  }
  return n;
}

}  // namespace

TEST(OrvHtmlPages, EveryPageOpensTheSameWayTwice) {
  std::vector<std::filesystem::path> pages = Pages();
  ASSERT_GE(pages.size(), 60u);
  OrvHtml html;
  OrvHtmlDoc probe;
  auto openHtml = [](OrvBitsDoc& d, std::string& p) {
    return static_cast<OrvHtml&>(d).Open(p.data(), static_cast<long>(p.size()), ORV_CHARSET_BYTES);
  };
  auto openProbe = [](OrvBitsDoc& d, std::string& p) {
    return static_cast<OrvHtmlDoc&>(d).Open(p.data(), static_cast<long>(p.size()),
                                            ORV_CHARSET_BYTES);
  };
  int64_t allLinks = 0;
  for (const auto& path : pages) {
    std::string page = ReadFile(path);
    Summary first = OpenAndSummarise(html, openHtml, page);
    Summary again = OpenAndSummarise(html, openHtml, page);
    Summary other = OpenAndSummarise(probe, openProbe, page);
    EXPECT_TRUE(first.sound) << path;
    EXPECT_GT(first.texts, 0) << path;
    EXPECT_EQ(first, again) << path;
    EXPECT_EQ(first, other) << path;
    // A link element for every `a` start tag the page holds, but those that
    // only appear inside scripts or comments.
    int64_t written = CountLinkTags(page);
    EXPECT_LE(first.links, written) << path;
    EXPECT_GE(first.links, written - written / 5 - 2) << path;
    allLinks += first.linkTargets;
  }
  // The data set's list of link targets has one line per href of an `a`.
  std::string links = ReadFile(ORV_DATA_DIR "/links.txt");
  int64_t lines = std::count(links.begin(), links.end(), '\n');
  EXPECT_NEAR(static_cast<double>(allLinks), static_cast<double>(lines), lines * 0.02);
}
