#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"
#include "FetchOptions.h"
#include "JsonOutput.h"
#include "PageLinks.h"
#include "PageSource.h"
#include "ShownText.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrls.h"

namespace {

struct LinksOptions {
  std::string entry;
  std::string html;
  std::string base;
  std::string input;
  FetchOptions fetch;
  bool json = false;
};

OrvString ToOrv(std::string_view s) { return OrvString(s.data(), long(s.size())); }

// One link a line, "URL" or "URL<TAB>label". Blank lines carry no link; a
// CR before the line break is taken as part of it.
std::vector<PageLink> ParseLinkLines(const std::string& text) {
  std::vector<PageLink> links;
  ForEachInputLine(text, [&links](std::string_view line) {
    size_t tab = line.find('\t');
    std::string_view url = line.substr(0, tab), label;
    if (tab != std::string_view::npos) label = line.substr(tab + 1);
    links.push_back({ToOrv(url), ToOrv(label)});
  });
  return links;
}

std::string FromOrv(const OrvString& s) {
  return s.len > 0 ? std::string(s.buf, size_t(s.len)) : std::string();
}

// Hands the links to the classifier, giving up each one's text once the
// classifier holds its own copy, so the two lists are never whole at once.
void Classify(OrvWebPageUrls& urls, const std::string& entry, std::vector<PageLink> input) {
  if (!entry.empty()) urls.SetEntryUrl(ToOrv(entry));
  for (auto& link : input) {
    urls.AddLink(link.url, link.label, nullptr);
    link = PageLink();
  }
  std::vector<PageLink>().swap(input);
  urls.ClassifyUrls();
}

// Calls onClass(key, linkCount) for each class, then onLink(url, label) for
// each of its links, reading the classifier in place instead of copying it.
template <class OnClass, class OnLink>
void ForEachClass(OrvWebPageUrls& urls, OnClass onClass, OnLink onLink) {
  OrvString key, url, label;
  void* userData = nullptr;
  int classCount = urls.GetClassCount();
  for (int c = 0; c < classCount; c++) {
    void* handle = urls.FetchClass(c);
    key.Cutlen(0);
    if (!urls.GetClassKeyStr(handle, key)) key.Cutlen(0);
    int linkCount = urls.GetUrlCount(handle);
    onClass(FromOrv(key), linkCount);
    for (int i = 0; i < linkCount; i++)
      if (urls.FetchUrl(handle, i, url, label, userData)) onLink(FromOrv(url), FromOrv(label));
  }
}

nlohmann::ordered_json ToJson(OrvWebPageUrls& urls) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  nlohmann::ordered_json* links = nullptr;
  ForEachClass(
      urls,
      [&](std::string key, int) {
        list.push_back({{"key", std::move(key)}, {"urls", nlohmann::ordered_json::array()}});
        links = &list.back()["urls"];
      },
      [&](std::string url, std::string label) {
        links->push_back({{"url", std::move(url)}, {"label", std::move(label)}});
      });
  return {{"classes", std::move(list)}};
}

void PrintReadable(OrvWebPageUrls& urls) {
  size_t classes = 0, total = 0;
  ForEachClass(
      urls,
      [&](const std::string&, int count) {
        classes++;
        total += size_t(count);
      },
      [](const std::string&, const std::string&) {});
  std::cout << classes << (classes == 1 ? " class, " : " classes, ") << total
            << (total == 1 ? " link\n" : " links\n");
  size_t i = 0;
  ForEachClass(
      urls,
      [&](const std::string& key, int count) {
        std::cout << "\nclass " << i++ << " (" << count << (count == 1 ? " link): " : " links): ")
                  << ShownText(key) << "\n";
      },
      [](const std::string& url, const std::string& label) {
        std::cout << "  " << ShownText(url);
        if (!label.empty()) std::cout << "\t" << ShownText(label);
        std::cout << "\n";
      });
}

int RunLinks(const LinksOptions& options) {
  std::vector<PageLink> input;
  std::string entry = options.entry;
  if (options.html.empty()) {
    input = ParseLinkLines(ReadInput(options.input.empty() ? "-" : options.input, options.json));
  } else {
    std::string contentType;
    std::string page = ReadPageSource(options.html, &contentType, &options.fetch, options.json);
    std::string pageUrl =
        options.base.empty() && IsWebUrl(options.html) ? options.html : options.base;
    bool resolved = false;
    input = LinksOfPage(std::move(page), contentType, pageUrl, &resolved);
    if (!resolved && !input.empty())
      std::cerr << "orvwebpage: links kept as written: give --base URL to resolve them\n";
    if (entry.empty()) entry = pageUrl;
  }
  OrvWebPageUrls urls;
  Classify(urls, entry, std::move(input));
  if (options.json)
    PrintJson(ToJson(urls));
  else
    PrintReadable(urls);
  return 0;
}

}  // namespace

Command AddLinksCommand(CLI::App& parent) {
  auto options = std::make_shared<LinksOptions>();
  CLI::App* app = parent.add_subcommand(
      "links", "Sort links into classes of like URL shape and name each class by its key");
  app->add_option("--entry", options->entry,
                  "Entry URL: links on its domain are told apart from the others "
                  "(default: the page's URL with --html)")
      ->type_name("URL");
  CLI::Option* input =
      app->add_option("input", options->input,
                      "File of links, one a line: URL or URL<TAB>label (- or nothing for stdin)");
  CLI::Option* html =
      app->add_option("--html", options->html,
                      "Take the links of the a and area elements of this page instead (file, - "
                      "or http(s) URL), resolved against its URL and <base> as a browser does")
          ->excludes(input)
          ->type_name("FILE|URL");
  app->add_option(
         "--base", options->base,
         "URL the page read by --html stands for, to resolve its links against (default: its URL)")
      ->needs(html)
      ->type_name("URL");
  AddFetchOptions(app, options->fetch);
  app->add_flag("--json", options->json, "Print one JSON document");
  app->footer(kKeyNotation);
  return {app, [options] { return RunLinks(*options); }};
}
