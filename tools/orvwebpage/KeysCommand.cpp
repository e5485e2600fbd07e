#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Command.h"
#include "JsonOutput.h"
#include "ShownText.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"

namespace {

struct KeysOptions {
  std::string entry;
  std::vector<std::string> urls;
  bool json = false;
};

struct UrlKeys {
  std::string url, host, path, extension, query, shape;
};

std::string FromOrv(const OrvString& s) {
  return s.len > 0 ? std::string(s.buf, size_t(s.len)) : std::string();
}

OrvString ToOrv(const std::string& s) { return OrvString(s.data(), long(s.size())); }

std::vector<UrlKeys> ComputeKeys(const KeysOptions& options) {
  // Level keys as link classification sees them: after a sorting Parse.
  OrvUrlFilterExtractor extractor;
  OrvWebPageUrlsSearch search;
  if (!options.entry.empty()) {
    OrvWebPageUrl entry;
    entry.url = ToOrv(options.entry);
    entry.Parse(1);
    extractor.SetEntryHost(entry.host);
    search.SetEntryUrl(ToOrv(options.entry));
  }
  std::vector<UrlKeys> all;
  OrvString key;
  for (const auto& text : WithStdinLines(options.urls)) {
    OrvWebPageUrl url;
    url.url = ToOrv(text);
    url.Parse(1);
    UrlKeys& out = all.emplace_back();
    out.url = FromOrv(url.url);
    std::string* levels[4] = {&out.host, &out.path, &out.extension, &out.query};
    for (uint8_t level = 0; level < 4; level++) {
      extractor.Extract(level, key, url);
      *levels[level] = FromOrv(key);
    }
    // The shape key of the search, whose Parse keeps the parameter order.
    search.SearchUrls(ToOrv(text), key);
    out.shape = FromOrv(key);
  }
  return all;
}

void PrintKeysJson(const std::vector<UrlKeys>& all) {
  auto doc = nlohmann::ordered_json::array();
  for (const auto& k : all)
    doc.push_back({{"url", k.url},
                   {"host", k.host},
                   {"path", k.path},
                   {"extension", k.extension},
                   {"query", k.query},
                   {"shape", k.shape}});
  PrintJson(doc);
}

void PrintReadable(const std::vector<UrlKeys>& all) {
  for (size_t i = 0; i < all.size(); i++) {
    const auto& k = all[i];
    if (i) std::cout << "\n";
    std::cout << ShownText(k.url) << "\n"
              << "  host       " << ShownText(k.host) << "\n"
              << "  path       " << ShownText(k.path) << "\n"
              << "  extension  " << ShownText(k.extension) << "\n"
              << "  query      " << ShownText(k.query) << "\n"
              << "  shape      " << ShownText(k.shape) << "\n";
  }
}

}  // namespace

Command AddKeysCommand(CLI::App& parent) {
  auto options = std::make_shared<KeysOptions>();
  CLI::App* app = parent.add_subcommand(
      "keys", "Show the shape keys of URLs: host, path, extension, query, and the search key");
  app->add_option("--entry", options->entry,
                  "Entry URL: hosts holding its domain count as on the site")
      ->type_name("URL");
  app->add_option("urls", options->urls,
                  "URLs to show the keys of (- reads them from stdin, one a line)")
      ->required();
  app->add_flag("--json", options->json, "Print one JSON document");
  app->footer(kKeyNotation);
  return {app, [options] {
            std::vector<UrlKeys> all = ComputeKeys(*options);
            if (options->json)
              PrintKeysJson(all);
            else
              PrintReadable(all);
            return 0;
          }};
}
