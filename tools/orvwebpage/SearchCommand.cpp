#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"
#include "JsonOutput.h"
#include "ShownText.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"

namespace {

struct SearchOptions {
  std::string example;
  std::string entry;
  std::string input;
  bool json = false;
};

struct SearchResult {
  std::string key;
  std::vector<std::string> found;
};

// One URL a line, as links takes them: a <TAB>label part is dropped, blank
// lines carry none, a CR before the line break is dropped.
std::vector<std::string> ParseUrlLines(const std::string& text) {
  std::vector<std::string> urls;
  ForEachInputLine(text, [&urls](std::string_view line) {
    line = line.substr(0, line.find('\t'));
    if (line.find_first_not_of(" \f\v") != std::string_view::npos) urls.emplace_back(line);
  });
  return urls;
}

std::string FromOrv(const OrvString& s) {
  return s.len > 0 ? std::string(s.buf, size_t(s.len)) : std::string();
}

OrvString ToOrv(const std::string& s) { return OrvString(s.data(), long(s.size())); }

SearchResult Search(const SearchOptions& options, const std::vector<std::string>& urls) {
  OrvWebPageUrlsSearch search;
  if (!options.entry.empty()) search.SetEntryUrl(ToOrv(options.entry));
  for (const auto& url : urls) search.AddUrl(ToOrv(url));
  SearchResult result;
  OrvString key, url;
  search.SearchUrls(ToOrv(options.example), key);
  result.key = FromOrv(key);
  unsigned count = search.GetFoundUrlsCount();
  for (unsigned i = 0; i < count; i++) {
    search.GetFoundUrl(i, url);
    result.found.push_back(FromOrv(url));
  }
  return result;
}

void PrintSearchJson(const SearchResult& result) {
  PrintJson(nlohmann::ordered_json{{"key", result.key}, {"found", result.found}});
}

void PrintReadable(const SearchResult& result, size_t searched) {
  std::cout << "key: " << ShownText(result.key) << "\n"
            << result.found.size() << " of " << searched << (searched == 1 ? " URL" : " URLs")
            << " found\n";
  for (const auto& url : result.found) std::cout << "  " << ShownText(url) << "\n";
}

}  // namespace

Command AddSearchCommand(CLI::App& parent) {
  auto options = std::make_shared<SearchOptions>();
  CLI::App* app =
      parent.add_subcommand("search", "Find the listed URLs that have the shape of an example URL");
  app->add_option("--example", options->example, "The URL whose shape is wanted")
      ->required()
      ->type_name("URL");
  app->add_option("--entry", options->entry,
                  "Entry URL: hosts holding its domain count as on the site")
      ->type_name("URL");
  app->add_option("input", options->input,
                  "File of URLs, one a line, a <TAB>label after it ignored (- or nothing for "
                  "stdin)");
  app->footer(kKeyNotation);
  app->add_flag("--json", options->json, "Print one JSON document");
  return {app, [options] {
            std::vector<std::string> urls = ParseUrlLines(
                ReadInput(options->input.empty() ? "-" : options->input, options->json));
            SearchResult result = Search(*options, urls);
            if (options->json)
              PrintSearchJson(result);
            else
              PrintReadable(result, urls.size());
            return 0;
          }};
}
