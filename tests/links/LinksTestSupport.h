#pragma once

#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrls.h"

// What a caller sees of a classification, read through the exported walk.
struct SeenLink {
  std::string url;
  std::string label;
  void* userData;
  bool operator==(const SeenLink&) const = default;
};

struct SeenClass {
  std::string key;
  std::vector<SeenLink> links;
  bool operator==(const SeenClass&) const = default;
};

inline OrvString Orv(const std::string& s) { return OrvString(s.data(), long(s.size())); }

inline std::string Std(const OrvString& s) {
  return s.len > 0 ? std::string(s.buf, size_t(s.len)) : std::string();
}

inline std::vector<SeenClass> ReadClasses(OrvWebPageUrls& urls) {
  std::vector<SeenClass> classes;
  int count = urls.GetClassCount();
  for (int c = 0; c < count; c++) {
    void* handle = urls.FetchClass(c);
    SeenClass& seen = classes.emplace_back();
    OrvString key;
    if (urls.GetClassKeyStr(handle, key) != 1)
      seen.key = "<unreadable>";
    else
      seen.key = Std(key);
    int links = urls.GetUrlCount(handle);
    for (int i = 0; i < links; i++) {
      OrvString url, label;
      void* userData = nullptr;
      if (urls.FetchUrl(handle, i, url, label, userData) != 1) {
        seen.links.push_back({"<unreadable>", "", nullptr});
        continue;
      }
      seen.links.push_back({Std(url), Std(label), userData});
    }
  }
  return classes;
}

inline void* Tag(intptr_t n) { return reinterpret_cast<void*>(n); }

// The pattern texts of the extension families, as they stand in class keys.
inline const std::string kPageFamily =
    R"((.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E))";
inline const std::string kImageFamily = R"((.jpg\E,.png\E,.ico\E))";
inline const std::string kScriptFamily = R"((.js\E,.css\E))";
inline const std::string kMediaFamily = R"((.flv\E,.gif\E))";
inline const std::string kNoExtension = R"((/\S\E,/\E))";
