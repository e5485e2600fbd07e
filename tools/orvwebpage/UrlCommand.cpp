#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Command.h"
#include "ShownText.h"
#include "orvwebpage/OrvWebPageUrl.h"

// orvwebpage url [--no-sort] [--json] URL...: the parsed record of each URL,
// the text Rebuild writes from it, and its parameter names.

namespace {

struct UrlOptions {
  std::vector<std::string> urls;
  bool noSort = false;
  bool json = false;
};

struct UrlParts {
  std::string url, scheme, host, stem, ext, rebuilt, names;
  std::vector<std::string> dirs;
  std::vector<std::pair<std::string, std::string>> params;
};

std::string Text(const OrvString& s) { return s.len > 0 ? std::string(s.buf, size_t(s.len)) : ""; }

UrlParts Describe(OrvWebPageUrl& record, const std::string& text, bool sort) {
  UrlParts parts;
  record.url.CopyBuf(text.data(), long(text.size()));
  record.Parse(sort ? 1 : 0);
  parts.url = Text(record.url);
  parts.scheme = Text(record.scheme);
  parts.host = Text(record.host);
  for (int32_t i = 0; i < record.dirs.count; i++) parts.dirs.emplace_back(record.dirs[i]);
  parts.stem = Text(record.stem);
  parts.ext = Text(record.ext);
  for (int32_t i = 0; i < record.paramCount; i++)
    parts.params.emplace_back(Text(record.params[i].name), Text(record.params[i].value));
  OrvString names;
  OrvWebPageUrl::GetParamNames(names, record);
  parts.names = Text(names);
  record.Rebuild();
  parts.rebuilt = Text(record.url);
  return parts;
}

void PrintJson(const std::vector<UrlParts>& all) {
  auto doc = nlohmann::ordered_json::array();
  for (const auto& p : all) {
    auto params = nlohmann::ordered_json::array();
    for (const auto& [name, value] : p.params) params.push_back({{"name", name}, {"value", value}});
    doc.push_back({{"url", p.url},
                   {"scheme", p.scheme},
                   {"host", p.host},
                   {"dirs", p.dirs},
                   {"stem", p.stem},
                   {"ext", p.ext},
                   {"params", params},
                   {"rebuilt", p.rebuilt},
                   {"names", p.names}});
  }
  // A URL is any byte string: invalid UTF-8 shows as U+FFFD rather than failing.
  std::cout << doc.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

void PrintReadable(const std::vector<UrlParts>& all) {
  for (size_t i = 0; i < all.size(); i++) {
    const auto& p = all[i];
    if (i) std::cout << "\n";
    std::string dirs;
    for (size_t k = 0; k < p.dirs.size(); k++) dirs += (k ? ", " : "") + p.dirs[k];
    std::string params;
    for (size_t k = 0; k < p.params.size(); k++)
      params += (k ? ", " : "") + p.params[k].first + "=" + p.params[k].second;
    const std::pair<const char*, const std::string*> lines[] = {
        {"url", &p.url},     {"scheme", &p.scheme},   {"host", &p.host},
        {"dirs", &dirs},     {"stem", &p.stem},       {"ext", &p.ext},
        {"params", &params}, {"rebuilt", &p.rebuilt}, {"names", &p.names}};
    for (const auto& [label, value] : lines) {
      std::cout << label;
      if (!value->empty())
        std::cout << std::string(9 - std::string(label).size(), ' ') << ShownText(*value);
      std::cout << "\n";
    }
  }
}

}  // namespace

Command AddUrlCommand(CLI::App& parent) {
  auto options = std::make_shared<UrlOptions>();
  CLI::App* app = parent.add_subcommand("url", "Parse URLs into their parts and rebuild them");
  app->add_flag("--no-sort", options->noSort, "keep the parameters in URL order");
  app->add_flag("--json", options->json, "print a JSON array, one object per URL");
  app->add_option("URL", options->urls,
                  "URLs to parse (any text is one; - reads them from stdin, one a line)")
      ->required();
  return {app, [options] {
            OrvWebPageUrl record;  // reused, as the library's callers do
            std::vector<UrlParts> all;
            for (const auto& text : WithStdinLines(options->urls))
              all.push_back(Describe(record, text, !options->noSort));
            if (options->json)
              PrintJson(all);
            else
              PrintReadable(all);
            return 0;
          }};
}
