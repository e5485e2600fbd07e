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
#include "orvwebpage/OrvVisibleBlocks.h"
#include "orvwebpage/OrvVisibleHtml.h"

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
// the tree's own, no copy of them is made for printing.
class PageClasses {
 public:
  PageClasses(std::string page, const std::string& contentType) {
    CheckPageMemory(page, PageTree::kTexts);
    if (doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8, contentType.c_str()) != 0)
      throw CommandError("cannot parse the page");
    std::string().swap(page);  // the tree holds copies: the raw page is no longer needed
    blocks.Read(doc.root);
  }

  int Count() const { return blocks.GetClassCount(); }
  int TextCount(int c) const { return blocks.GetTextCount(c); }
  std::string Path(int c) const {
    OrvString path;
    blocks.GetPath(c, path);
    return std::string(path.buf ? path.buf : "", size_t(path.len));
  }
  // Calls add(text) for each text of class c.
  template <class Add>
  void ForEachText(int c, Add add) const {
    for (int i = 0; i < blocks.GetTextCount(c); i++) {
      const char* text = nullptr;
      int32_t length = 0;
      if (blocks.GetText(c, i, text, length)) add(std::string_view(text, size_t(length)));
    }
  }

 private:
  OrvVisibleHtml doc;  // only what visible texts are read from
  OrvVisibleBlocks blocks;
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
  size_t items = count > 0 ? size_t(classes.TextCount(count - 1)) : 0;
  std::cout << count << (count == 1 ? " class, " : " classes, ") << items
            << (items == 1 ? " visible text\n" : " visible texts\n");
  for (int c = 0; c < count; c++) {
    bool page = c + 1 == count;
    size_t texts = size_t(classes.TextCount(c));
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
