#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "PageMemory.h"
#include "PageSource.h"
#include "ShownText.h"
#include "orvwebpage/OrvBlockTextWalk.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvVisibleBlocks.h"

// orvwebpage nodes [--json] FILE|URL: the visible texts of a page in classes,
// one per repeated block, each with the path of its block, and last the whole
// page.

namespace {

struct NodesOptions {
  std::string source;
  FetchOptions fetch;
  bool json = false;
};

// The classes of a page, read in place while its tree is open: the texts are
// views into the tree, no copy of them is made for printing.
class PageClasses : public OrvBlockTextSink {
 public:
  PageClasses(std::string page, const std::string& contentType) {
    CheckPageMemory(page);
    if (doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8, contentType.c_str()) != 0)
      throw CommandError("cannot parse the page");
    std::string().swap(page);  // the tree holds copies: the raw page is no longer needed
    blocks.Read(doc.root);
    OrvWalkBlockTexts(blocks, *this);
  }

  int Count() const { return int(classes.size()); }
  const std::string& Path(int c) const { return classes[size_t(c)].path; }
  // Calls add(text) for each text of class c.
  template <class Add>
  void ForEachText(int c, Add add) const {
    for (std::string_view text : classes[size_t(c)].texts) add(text);
  }

  void OnClass(const char* path, int32_t length) override {
    classes.emplace_back().path.assign(path, size_t(length));
  }
  void OnText(const char* text, int32_t length) override {
    classes.back().texts.emplace_back(text, size_t(length));
  }

 private:
  struct TextClass {
    std::string path;  // empty for the page
    std::vector<std::string_view> texts;
  };
  OrvHtml doc;
  OrvVisibleBlocks blocks;
  std::vector<TextClass> classes;
};

// One line per text: whitespace runs become one blank, ends trimmed.
std::string OneLine(std::string_view text) {
  std::string out;
  bool blank = false;
  for (char c : text) {
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v') {
      blank = !out.empty();
      continue;
    }
    if (blank) out += ' ';
    blank = false;
    out += c;
  }
  return out;
}

void PrintReadable(const PageClasses& classes) {
  int count = classes.Count();
  size_t items = 0;
  if (count > 0) classes.ForEachText(count - 1, [&items](std::string_view) { items++; });
  std::cout << count << (count == 1 ? " class, " : " classes, ") << items
            << (items == 1 ? " visible text\n" : " visible texts\n");
  for (int c = 0; c < count; c++) {
    bool page = c + 1 == count;
    size_t texts = 0;
    classes.ForEachText(c, [&texts](std::string_view) { texts++; });
    std::cout << "\n"
              << (page ? std::string("page") : "block " + std::to_string(c)) << " (" << texts
              << (texts == 1 ? " text)" : " texts)");
    if (!page) std::cout << " at " << ShownText(classes.Path(c));
    std::cout << "\n";
    classes.ForEachText(
        c, [](std::string_view text) { std::cout << "  " << ShownText(OneLine(text)) << "\n"; });
  }
}

int RunNodes(const NodesOptions& options) {
  std::string contentType;
  std::string page = ReadPageSource(options.source, &contentType, &options.fetch, options.json);
  PageClasses classes(std::move(page), contentType);
  if (options.json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (int c = 0; c < classes.Count(); c++) {
      nlohmann::ordered_json one;
      if (c + 1 < classes.Count()) one["path"] = classes.Path(c);
      nlohmann::ordered_json items = nlohmann::ordered_json::array();
      classes.ForEachText(c,
                          [&items](std::string_view text) { items.push_back(std::string(text)); });
      one["items"] = std::move(items);
      list.push_back(std::move(one));
    }
    PrintJson(nlohmann::ordered_json{{"classes", std::move(list)}});
  } else {
    PrintReadable(classes);
  }
  return 0;
}

}  // namespace

Command AddNodesCommand(CLI::App& parent) {
  auto options = std::make_shared<NodesOptions>();
  CLI::App* app = parent.add_subcommand(
      "nodes",
      "Sort the visible texts of a page into classes: one per repeated block, then the page");
  app->add_option("source", options->source, "Page: a file, - for stdin, or an http(s) URL")
      ->required();
  AddFetchOptions(app, options->fetch);
  app->add_flag("--json", options->json, "Print one JSON document");
  return {app, [options] { return RunNodes(*options); }};
}
