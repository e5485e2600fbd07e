#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
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

struct TextClass {
  std::string path;  // empty for the page
  std::vector<std::string> texts;
};
using TextClasses = std::vector<TextClass>;

// Texts are copied out while the document is open; the classes only point
// into it.
class CopiedClasses : public OrvBlockTextSink {
 public:
  TextClasses classes;
  void OnClass(const char* path, int32_t length) override {
    classes.emplace_back().path.assign(path, size_t(length));
  }
  void OnText(const char* text, int32_t length) override {
    classes.back().texts.emplace_back(text, size_t(length));
  }
};

TextClasses ClassifyPage(std::string page, const std::string& contentType) {
  CheckPageMemory(page);
  OrvHtml doc;
  if (doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8, contentType.c_str()) != 0)
    throw CommandError("cannot parse the page");
  std::string().swap(page);  // the tree holds copies: the raw page is no longer needed
  OrvVisibleBlocks blocks;
  blocks.Read(doc.root);
  CopiedClasses copied;
  OrvWalkBlockTexts(blocks, copied);
  doc.Close();
  return std::move(copied.classes);
}

// One line per text: whitespace runs become one blank, ends trimmed.
std::string OneLine(const std::string& text) {
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

void PrintReadable(const TextClasses& classes) {
  size_t items = classes.empty() ? 0 : classes.back().texts.size();
  std::cout << classes.size() << (classes.size() == 1 ? " class, " : " classes, ") << items
            << (items == 1 ? " visible text\n" : " visible texts\n");
  for (size_t c = 0; c < classes.size(); c++) {
    const auto& texts = classes[c].texts;
    bool page = c + 1 == classes.size();
    std::cout << "\n"
              << (page ? std::string("page") : "block " + std::to_string(c)) << " (" << texts.size()
              << (texts.size() == 1 ? " text)" : " texts)");
    if (!page) std::cout << " at " << ShownText(classes[c].path);
    std::cout << "\n";
    for (const auto& text : texts) std::cout << "  " << ShownText(OneLine(text)) << "\n";
  }
}

int RunNodes(const NodesOptions& options) {
  std::string contentType;
  std::string page = ReadPageSource(options.source, &contentType, &options.fetch, options.json);
  TextClasses classes = ClassifyPage(std::move(page), contentType);
  if (options.json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (size_t c = 0; c < classes.size(); c++) {
      nlohmann::ordered_json one;
      if (c + 1 < classes.size()) one["path"] = classes[c].path;
      one["items"] = classes[c].texts;
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
