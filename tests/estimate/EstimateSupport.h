#pragma once

// Reading a page's harvest back as short texts, and a paged listing served on
// loopback.

#include <map>
#include <sstream>
#include <string>

#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "support/LocalServers.h"

// key=text; key=text, sorted by key, for every live entry of a keyed map. The
// buckets are read directly: the flat order is a snapshot that removals leave stale.
template <class V, class Show>
std::string Summarise(OrvStrMap<V>& map, Show show) {
  std::map<std::string, std::string> byKey;
  for (uint32_t b = 0; b < map.bucketCount; b++) {
    for (uint32_t i = 0; i < map.buckets[b].used; i++) {
      const auto& entry = map.buckets[b].entries[i];
      std::string key(map.keys + entry.keyOffset, size_t(entry.keyLen));
      byKey[key] = show(key, entry.value);
    }
  }
  std::string out;
  for (const auto& [key, text] : byKey) out += (out.empty() ? "" : "; ") + key + "=" + text;
  return out;
}

// The items of each key: URLs joined by " | ", numbers by ",".
template <class T>
std::string Summarise(OrvKeyedList<T>& list) {
  return Summarise(list.map, [](const std::string&, const OrvPtrList* items) {
    std::string text;
    for (int32_t i = 0; i < items->count; i++) {
      const T& item = *static_cast<const T*>(items->items[i]);
      if constexpr (std::is_same_v<T, OrvLinkRecord>)
        text += (i ? " | " : "") + std::string(item.url.buf, size_t(item.url.len));
      else
        text += (i ? "," : "") + std::to_string(item.number);
    }
    return text;
  });
}

// Per depth: text runs / non-blank bytes.
inline std::string SummariseText(OrvWebPageCountEstimateImpl& e) {
  return Summarise(e.textNodes.map, [&](const std::string& key, const OrvPtrList* items) {
    const int32_t* sum = e.textSums.Find(key.data(), int32_t(key.size()));
    return std::to_string(items->count) + "/" + (sum ? std::to_string(*sum) : "?");
  });
}

inline std::string Html(const std::string& body) {
  return "<!DOCTYPE html><html><head><title>t</title></head><body>" + body + "</body></html>";
}

inline std::string Link(const std::string& href, const std::string& text = "more") {
  return "<a href=\"" + href + "\">" + text + "</a>";
}

// A paged listing. Page n's page parameter is offset + (n - 1) * step;
// its pager links the pages of its window but itself, which stands as plain
// text; its items link /item?item=..., a shape of its own.
struct Listing {
  std::string path = "/list";
  int pages = 13;
  int lastForHigher = 0;  // else pages past the end are 404
  int window = 0;         // 0: every page; else n - window .. n + window
  int items = 0;
  std::string param = "page";
  int step = 1;
  int offset = 1;

  // From "pages=13 last=1 items=8 param=start step=20 offset=0 window=3".
  Listing(const std::string& at, const std::string& settings) : path(at) {
    std::istringstream in(settings);
    std::map<std::string, int*> numbers = {{"pages", &pages},   {"last", &lastForHigher},
                                           {"window", &window}, {"items", &items},
                                           {"step", &step},     {"offset", &offset}};
    for (std::string key, value; std::getline(in >> std::ws, key, '=') && in >> value;)
      key == "param" ? void(param = value) : void(*numbers.at(key) = std::atoi(value.c_str()));
  }

  // Serves a request for the listing's path.
  void operator()(const httplib::Request& request, httplib::Response& response) const {
    {
      long n = (std::atol(request.get_param_value(param.c_str()).c_str()) - offset) / step + 1;
      if (n > pages && lastForHigher) n = pages;
      if (n < 1 || n > pages || !request.has_param(param.c_str()))
        return void(response.status = 404);
      std::string body = "<ul>";
      for (int i = 1; i <= items; i++)
        body += "<li>" + Link("/item?item=" + std::to_string(n * 1000 + i), "Item") + "</li>";
      body += "</ul><div class=\"pager\">";
      for (long m = window ? std::max(1L, n - window) : 1; m <= (window ? n + window : pages); m++)
        body += m == n ? "<span>" + std::to_string(m) + "</span>"
                       : Link(path + "?" + param + "=" + std::to_string(offset + (m - 1) * step),
                              std::to_string(m));
      response.set_content(Html(body + "</div>"), "text/html");
    }
  }
};
