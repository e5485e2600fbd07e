#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvLinkHtml.h"
#include "orvwebpage/OrvPageLinks.h"
#include "support/Cases.h"

namespace {

const std::string kPageUrl = "http://s.test/dir/page.html";

// Each link as URL and label, then whether there was a base.
std::vector<std::string> Listed(const OrvPageLinks& links) {
  std::vector<std::string> out;
  OrvString url, label;
  for (int i = 0; i < links.GetCount(); i++) {
    links.Get(i, url, label);
    out.emplace_back(url.buf ? url.buf : "", size_t(url.len));
    out.emplace_back(label.buf ? label.buf : "", size_t(label.len));
  }
  out.push_back(links.HasBase() ? "(base)" : "(no base)");
  return out;
}

std::vector<std::string> LinksOf(var_item* root) {
  OrvPageLinks links;
  links.Read(root, kPageUrl.data(), long(kPageUrl.size()));
  return Listed(links);
}

// What the sink saw besides the links.
struct Streamed {
  std::vector<std::string> links;
  int restarts = 0;
  bool oneAtATime = true;  // each call got one top-level item
};

// The links read while the page is parsed, each top-level item gone once read.
Streamed StreamLinks(const std::string& page) {
  struct Reading {
    OrvPageLinks links;
    Streamed seen;
  } reading;
  OrvLinkSink sink{[](var_item* top, void* user) {
                     auto* r = static_cast<Reading*>(user);
                     r->seen.oneAtATime &= top && !top->next && !top->parent;
                     r->links.Add(top);
                     std::memset(static_cast<void*>(top), 0xA5, sizeof(var_item));
                   },
                   [](void* user) {
                     auto* r = static_cast<Reading*>(user);
                     r->seen.restarts++;
                     r->links.Begin(kPageUrl.data(), long(kPageUrl.size()));
                   },
                   &reading};
  reading.links.Begin(kPageUrl.data(), long(kPageUrl.size()));
  OrvLinkHtml lean;
  EXPECT_EQ(lean.Stream(page.data(), long(page.size()), ORV_CHARSET_UTF8, nullptr, sink), 0);
  EXPECT_EQ(lean.root, nullptr);
  reading.links.End();
  reading.seen.links = Listed(reading.links);
  return reading.seen;
}

// Items and attributes of a kind the link reader never reads, by name.
std::vector<std::string> UnexpectedItems(var_item* root) {
  std::vector<std::string> out;
  WalkItems(
      root, 1,
      [](var_item* item, int32_t, void* user) {
        auto* found = static_cast<std::vector<std::string>*>(user);
        auto name = [](const char* text, int32_t length) {
          return std::string(text ? text : "", size_t(MeasuredLen(text, length)));
        };
        std::string tag = name(item->name, item->name_len);
        bool text = item->tag_id == 0 && item->text;
        if (text ? !FindAncestor(item, ORV_TAG_LINK)
                 : item->tag_id != ORV_TAG_LINK && tag != "area" && tag != "base")
          found->push_back(tag);
        for (var_attr* attr = item->attr_list; attr; attr = attr->next) {
          std::string attrName = name(attr->name, attr->name_len);
          if (attrName != "href" && attrName != "alt") found->push_back(tag + "@" + attrName);
        }
      },
      &out);
  return out;
}

void ExpectSameLinks(const std::string& what, const std::string& page) {
  OrvHtml whole;
  OrvLinkHtml lean;
  std::string copy = page;
  ASSERT_EQ(whole.Open(copy.data(), long(copy.size()), ORV_CHARSET_UTF8), 0) << what;
  ASSERT_EQ(lean.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0) << what;
  EXPECT_EQ(LinksOf(lean.root), LinksOf(whole.root)) << what;
  EXPECT_EQ(UnexpectedItems(lean.root), std::vector<std::string>()) << what;
  Streamed streamed = StreamLinks(page);
  EXPECT_EQ(streamed.links, LinksOf(whole.root)) << what;
  EXPECT_TRUE(streamed.oneAtATime) << what;
}

TEST(OrvLinkHtml, ReadsTheLinksOfTheWholeTree) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/pagelinks/linkhtml.tsv", 2, true))
    ExpectSameLinks(c[0], c[1]);
  for (const auto& c : ReadCases(ORV_CASES_DIR "/pagelinks/pages.tsv", 3, true))
    ExpectSameLinks(c[1], c[1]);
  int pages = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages")) {
    std::ifstream in(entry.path(), std::ios::binary);
    std::stringstream page;
    page << in.rdbuf();
    ExpectSameLinks(entry.path().filename().string(), page.str());
    pages++;
  }
  EXPECT_GT(pages, 0);
}

TEST(OrvLinkHtml, DeepNestingCostsNoItems) {
  std::string page;
  for (int i = 0; i < 1000000; i++) page += "<div>";
  page += "<a href=deep>in</a><div>";
  OrvLinkHtml lean;
  ASSERT_EQ(lean.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8), 0);
  ASSERT_NE(lean.root, nullptr);
  EXPECT_EQ(lean.root->tag_id, ORV_TAG_LINK);
  EXPECT_EQ(lean.root->next, nullptr);
  ASSERT_NE(lean.root->child, nullptr);
  EXPECT_EQ(std::string(lean.root->child->text), "in");
  EXPECT_EQ(lean.Close(), 0);
  EXPECT_EQ(lean.root, nullptr);
}

}  // namespace

namespace {

// A page the parser reads where the cut script body was not expected is read
// again whole: the links handed over from the first reading are forgotten.
TEST(OrvLinkHtml, StreamStartsAgainWhenThePageIsReadAgain) {
  std::string page = "<a href=1>x</a></b<script>y</script><base href=/b/><a href=2>z</a>";
  OrvHtml whole;
  std::string copy = page;
  ASSERT_EQ(whole.Open(copy.data(), long(copy.size()), ORV_CHARSET_UTF8), 0);
  Streamed streamed = StreamLinks(page);
  EXPECT_EQ(streamed.restarts, 1);
  EXPECT_EQ(streamed.links, LinksOf(whole.root));
  EXPECT_EQ(StreamLinks("<a href=1>x</a><script>y</script>").restarts, 0);
}

TEST(OrvLinkHtml, StreamOfDeepMarkup) {
  std::string page;
  for (int i = 0; i < 1000000; i++) page += "<div>";
  page += "<a href=deep>in</a><div>";
  EXPECT_EQ(StreamLinks(page).links,
            (std::vector<std::string>{"http://s.test/dir/deep", "in", "(base)"}));
}

}  // namespace
