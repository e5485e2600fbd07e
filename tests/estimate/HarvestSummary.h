#pragma once

// Reads the keyed lists of a harvest back as short texts, sorted by key, so a
// table row can state what a walk should have gathered. The buckets are read
// directly: the flat order is a snapshot that removals leave stale.

#include <map>
#include <string>
#include <vector>

#include "estimate/OrvWebPageCountEstimateImpl.h"

// Calls visit(key text, value) for every live entry of the map.
template <class V, class Visit>
void ForEachEntry(OrvStrMap<V>& map, Visit visit) {
  for (uint32_t b = 0; b < map.bucketCount; b++) {
    for (uint32_t i = 0; i < map.buckets[b].used; i++) {
      const auto& entry = map.buckets[b].entries[i];
      visit(std::string(map.keys + entry.keyOffset, size_t(entry.keyLen)), entry.value);
    }
  }
}

template <class T, class Show>
std::string SummariseKeyed(OrvKeyedList<T>& list, Show show, const char* separator) {
  std::map<std::string, std::string> byKey;
  ForEachEntry(list.map, [&](const std::string& key, const OrvPtrList* items) {
    std::string text;
    for (int32_t i = 0; i < items->count; i++) {
      if (i) text += separator;
      text += show(*static_cast<const T*>(items->items[i]));
    }
    byKey[key] = text;
  });
  std::string out;
  for (const auto& [key, text] : byKey) {
    if (!out.empty()) out += "; ";
    out += key + "=" + text;
  }
  return out;
}

inline std::string LinkText(const OrvLinkRecord& r) { return std::string(r.url.buf, r.url.len); }

inline std::string NumberText(const OrvNumberLink& n) { return std::to_string(n.number); }

inline std::string SummariseLinks(OrvPageHarvest& h) {
  return SummariseKeyed(h.links, LinkText, " | ");
}

inline std::string SummariseNumbers(OrvPageHarvest& h) {
  return SummariseKeyed(h.numbers, NumberText, ",");
}

inline std::string SummariseRuns(OrvPageHarvest& h) {
  return SummariseKeyed(h.runs, NumberText, ",");
}

// Per depth: text runs / non-blank bytes.
inline std::string SummariseText(OrvWebPageCountEstimateImpl& e) {
  std::map<std::string, std::string> byKey;
  ForEachEntry(e.textNodes.map, [&](const std::string& key, const OrvPtrList* items) {
    const int32_t* sum = e.textSums.Find(key.data(), int32_t(key.size()));
    byKey[key] = std::to_string(items->count) + "/" + (sum ? std::to_string(*sum) : "?");
  });
  std::string out;
  for (const auto& [key, text] : byKey) {
    if (!out.empty()) out += "; ";
    out += key + "=" + text;
  }
  return out;
}
