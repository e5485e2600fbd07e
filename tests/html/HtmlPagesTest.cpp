#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "html/HtmlTestSupport.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvHtmlBuilder.h"
#include "support/Cases.h"

namespace {

// Start tags of `a` as written: "<a" in either case, then a blank, '>' or '/'.
int64_t CountLinkTags(const std::string& page) {
  int64_t n = 0;
  for (size_t i = 0; i + 2 < page.size(); i++)
    n += page[i] == '<' && (page[i + 1] | 0x20) == 'a' && strchr(" \t\n\r\f>/", page[i + 2]);
  return n;
}

// Links and link targets of a tree; sound stays true while every record keeps
// the item contract.
struct Summary {
  int64_t links = 0, targets = 0;
  bool sound = true;
};

void Summarise(var_item* item, int32_t, void* user) {
  Summary* s = static_cast<Summary*>(user);
  std::string_view text(item->text ? item->text : "", size_t(std::max(item->text_len, 0)));
  if (item->tag_id == 0) {
    s->sound = s->sound && text.find_first_not_of(" \t\n\r\f") != text.npos && item->parent &&
               !item->child && !item->attr_list && item->text[item->text_len] == '\0' &&
               CapsEqual(item->name, item->name_len, "$text", 5);
  } else {
    s->sound = s->sound && item->name && item->name_len > 0 && !item->text && !item->text_len;
  }
  for (var_attr* a = item->attr_list; a; a = a->next)
    s->sound = s->sound && a->name && a->name_len > 0 && a->value && a->value_len >= 0;
  s->links += item->tag_id == ORV_TAG_LINK;
  s->targets += item->tag_id == ORV_TAG_LINK && FindLinkAttr(item->attr_list);
}

}  // namespace

// Real pages open to the same tree in both kinds of document, every record
// sound, with a link for every `a` tag but those in scripts or comments.
TEST(OrvHtmlPages, RealPagesOpenAlikeAndSound) {
  const auto paths = RealPagePaths();
  ASSERT_GE(paths.size(), 60u);
  OrvHtml html;
  OrvHtmlDoc probe;
  int64_t targets = 0;
  for (const auto& path : paths) {
    std::string page = ReadFile(path), first = page, second = page;
    ASSERT_EQ(html.Open(first.data(), long(first.size()), ORV_CHARSET_BYTES), 0) << path;
    ASSERT_EQ(probe.Open(second.data(), long(second.size()), ORV_CHARSET_BYTES), 0) << path;
    EXPECT_EQ(Dump(html.root), Dump(probe.root)) << path;
    Summary s;
    WalkItems(html.root, 1, Summarise, &s);
    EXPECT_TRUE(s.sound) << path;
    int64_t written = CountLinkTags(page);
    EXPECT_LE(s.links, written) << path;
    EXPECT_GE(s.links, written - written / 5 - 2) << path;
    targets += s.targets;
  }
  // The data set lists one link target per href of an `a`.
  std::string links = ReadFile(ORV_DATA_DIR "/links.txt");
  int64_t lines = std::count(links.begin(), links.end(), '\n');
  EXPECT_NEAR(double(targets), double(lines), lines * 0.02);
}

// Script and style bodies cut out before parsing and handed to the tree give
// the tree the parser gives when it reads them itself, and on real pages the
// parser meets every cut body where it was cut, so it runs once.
TEST(OrvHtmlPages, CutBodiesGiveTheParsersTreeInOneParse) {
  std::vector<std::pair<std::string, int>> pages = {{"<script>x</script>", 1},
                                                    {"</b<script>x</script>", 2}};
  for (const auto& path : RealPagePaths()) pages.push_back({ReadFile(path), 1});
  for (const auto& [page, runs] : pages) {
    for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
      OrvDocArena cutArena, wholeArena;
      var_item* cut = nullptr;
      var_item* whole = nullptr;
      int parses = 0;
      const char* text = page.data();
      long length = long(page.size());
      ASSERT_EQ(OrvBuildHtmlTree(text, length, charset, nullptr, cutArena, cut, true, &parses), 0);
      ASSERT_EQ(OrvBuildHtmlTree(text, length, charset, nullptr, wholeArena, whole, false), 0);
      EXPECT_EQ(Dump(cut), Dump(whole)) << page.substr(0, 60) << " charset " << charset;
      EXPECT_EQ(parses, runs) << page.substr(0, 60) << " charset " << charset;
    }
  }
}
