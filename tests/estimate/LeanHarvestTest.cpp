// The crawl keeps per depth only the number links that can still make the
// run DetectRuns picks, and of the links only their keys and texts, listed
// once the tree is gone. It must pick the very run, with the very template,
// and list the very URLs in the very order, that the whole records give.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "estimate/EstimateSupport.h"
#include "support/ItemTree.h"

namespace {

// The runs in map order: key, then each record's number, link element and
// target; then the template built from the first run.
std::string RunsOf(var_item* root, uint8_t allNumbers, bool wholePage) {
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/start", -1);
  estimator.SetEntryUrl(entry);
  estimator.allNumbers = allNumbers;
  OrvHarvestWalk walk;
  walk.harvest = &estimator;
  if (wholePage)
    walk.HarvestPage(root, 1);
  else
    walk.HarvestLinks(root, 1);
  estimator.DetectRuns();
  std::string out;
  for (uint32_t e = 0; e < estimator.runs.map.count; e++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvPtrList* list = *estimator.runs.map.GetAt(e, &key, &keyLen);
    out += std::string(key ? key : "", size_t(keyLen)) + ":";
    for (int32_t i = 0; i < list->count; i++) {
      const OrvNumberLink* n = estimator.runs.At(list, i);
      out += " " + std::to_string(n->number) + "@" +
             std::to_string(reinterpret_cast<uintptr_t>(n->link.item)) + "=" +
             std::string(n->link.url.buf ? n->link.url.buf : "", size_t(n->link.url.len));
    }
    out += "\n";
  }
  if (estimator.runs.map.count > 0) {
    OrvPageTemplate made;
    int32_t at = BuildPageTemplate(made, **estimator.runs.map.GetAt(0));
    out += "template " + std::to_string(at);
    if (at >= 0) out += " " + std::string(made.url.buf) + " " + std::to_string(made.paramIndex);
  }
  estimator.ResetPage();
  return out;
}

void ExpectSameRuns(const std::string& tree) {
  ItemTree items(tree);
  for (bool wholePage : {true, false}) {
    std::string all = RunsOf(items.root(), 1, wholePage);
    EXPECT_EQ(RunsOf(items.root(), 0, wholePage), all) << (wholePage ? "page" : "probe");
  }
}

// Calls check(tree) on the page of each harvest case, under its name.
template <class Check>
void ForEachCasePage(Check check) {
  std::ifstream in(ORV_CASES_DIR "/estimate/pages.txt");
  std::string line, name, tree;
  int cases = 0;
  auto one = [&] {
    if (name.empty()) return;
    SCOPED_TRACE(name);
    ++cases;
    check(tree);
  };
  while (std::getline(in, line)) {
    size_t colon = line.find(':');
    if (line.rfind("== ", 0) == 0) {
      one();
      name = line.substr(3), tree.clear();
    } else if (!(colon != std::string::npos && line.find_first_of(" \"=") > colon) &&
               !line.empty() && line[0] != '#') {
      tree += line + "\n";
    }
  }
  one();
  EXPECT_GT(cases, 40);
}

TEST(LeanHarvest, KeepsTheRunsOfTheWholeList) {
  ForEachCasePage([](const std::string& tree) { ExpectSameRuns(tree); });

  // Pagers broken and resumed: numbers that rise, repeat and fall, links of
  // two classes, some wrapped so that link and text depths differ.
  std::mt19937 random(28);
  const int numbers[] = {0, 1, 2, 3, 4, 5, 7, 9};
  for (int page = 0; page < 300; page++) {
    std::string text = "body\n";
    int links = int(random() % 14);
    for (int i = 0; i < links; i++) {
      int number = numbers[random() % 8];
      std::string target = "/list?page=" + std::to_string(number * 10);
      std::string link = "a href=" + target + (random() % 4 ? " class=p" : " class=q");
      switch (random() % 4) {
        case 0:  // the text one deeper
          text += "  " + link + "\n    span\n      \"" + std::to_string(number) + "\"\n";
          break;
        case 1:  // the link one deeper
          text += "  div\n    " + link + "\n      \"" + std::to_string(number) + "\"\n";
          break;
        default:
          text += "  " + link + "\n    \"" + std::to_string(number) + "\"\n";
      }
    }
    SCOPED_TRACE(text);
    ExpectSameRuns(text);
  }
}

// The listed links by key, in the order of the key map, each key's in order;
// no key lists a text twice.
std::string LinksOf(OrvWebPageCountEstimateImpl& e) {
  std::string out;
  auto list = [&](const char* key, int32_t keyLen, const std::vector<std::string>& texts) {
    out += std::string(key ? key : "", size_t(keyLen)) + ":";
    for (size_t i = 0; i < texts.size(); i++) {
      out += " " + texts[i];
      for (size_t j = 0; j < i; j++) EXPECT_NE(texts[j], texts[i]) << "listed twice";
    }
    out += "\n";
  };
  for (uint32_t k = 0; k < e.links.map.count; k++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvPtrList* records = *e.links.map.GetAt(k, &key, &keyLen);
    std::vector<std::string> texts;
    for (int32_t i = 0; i < records->count; i++) {
      const OrvString& url = e.links.At(records, i)->url;
      texts.emplace_back(url.buf ? url.buf : "", size_t(url.len));
    }
    list(key, keyLen, texts);
  }
  for (uint32_t k = 0; k < e.linkTexts.chains.count; k++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvLinkTexts::Chain* chain = e.linkTexts.chains.GetAt(k, &key, &keyLen);
    std::vector<std::string> texts;
    for (int32_t i = chain->first; i >= 0; i = e.linkTexts.texts.items[i].next) {
      const OrvLinkTexts::Text& t = e.linkTexts.texts.items[i];
      texts.emplace_back(e.linkTexts.At(t.offset), size_t(t.length));
    }
    list(key, keyLen, texts);
  }
  return out;
}

// The listed links, then the page URLs with their keys in the order the crawl
// queues them, after each of the pages walked in turn by one estimator.
std::string UrlsOf(const std::vector<const ItemTree*>& pages, uint8_t allLinks) {
  OrvWebPageCountEstimateImpl estimator;
  OrvString entry("http://www.site.test/start", -1);
  estimator.SetEntryUrl(entry);
  estimator.allLinks = allLinks;
  std::string out;
  for (const ItemTree* page : pages) {
    OrvHarvestWalk walk;
    walk.harvest = &estimator;
    walk.HarvestPage(page->root(), 1);
    estimator.ListHeldLinks();
    out += LinksOf(estimator);
    estimator.CollectPageUrls();
    for (uint32_t i = 0; i < estimator.pageUrls.count; i++) {
      const char* text = nullptr;
      int32_t length = 0;
      OrvString* key = *estimator.pageUrls.GetAt(i, &text, &length);
      out += std::string(text ? text : "", size_t(length)) + " " +
             std::string(key->buf ? key->buf : "", size_t(key->len)) + "\n";
    }
    out += "--\n";
    estimator.ResetPage();
  }
  return out;
}

TEST(LeanHarvest, ListsThePageUrlsOfTheWholeRecords) {
  ForEachCasePage([](const std::string& tree) {
    ItemTree page(tree);
    EXPECT_EQ(UrlsOf({&page}, 0), UrlsOf({&page}, 1));
  });

  // Repeated targets, shared and distinct parameter names, links that are
  // refused, keys of more links than are searched one by one; and pages in
  // turn, since the key map keeps its shape from page to page.
  std::mt19937 random(25);
  // Texts and keys past 127 bytes take more than one byte to state their length.
  const std::string longPath = "/" + std::string(150, 'l') + "?n%d=1";
  const std::string longName = "/q?" + std::string(140, 'b') + "%d=1";
  const char* forms[] = {"/p?id=%d",      "/p?id=%d&x=1", "/q?a%d=1",
                         "/r%d.html",     "/s.pdf?id=%d", "http://elsewhere.test/?id=%d",
                         "p?id=%d#top",   " /p?id=%d ",   longPath.c_str(),
                         longName.c_str()};
  for (int run = 0; run < 60; run++) {
    std::vector<std::unique_ptr<ItemTree>> pages;
    std::vector<const ItemTree*> order;
    std::string shown;
    for (int p = 0; p < 3; p++) {
      std::string text = "body\n";
      int links = int(random() % (p == 0 ? 1200 : 40));
      for (int i = 0; i < links; i++) {
        char href[256];
        std::snprintf(href, sizeof href, forms[random() % 10], int(random() % (links / 4 + 2)));
        text += "  a href=\"" + std::string(href) + "\"\n";
      }
      shown += text + "--\n";
      pages.push_back(std::make_unique<ItemTree>(text));
      order.push_back(pages.back().get());
    }
    SCOPED_TRACE(shown);
    EXPECT_EQ(UrlsOf(order, 0), UrlsOf(order, 1));
  }
}

}  // namespace
