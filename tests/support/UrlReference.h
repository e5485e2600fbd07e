#pragma once

// The URL parse written out step by step, for tests and the fuzz target to
// hold the library's parse against.

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageUrl.h"

inline std::string Str(const OrvString &s) { return s.len > 0 ? std::string(s.buf, s.len) : ""; }

// The parsed fields: scheme, host, directories, stem, extension, parameters.
inline std::vector<std::string> Fields(const OrvWebPageUrl &u) {
  std::string dirs, params;
  for (int32_t i = 0; i < u.dirs.count; i++) dirs += (i ? "," : "") + std::string(u.dirs[i]);
  for (int32_t i = 0; i < u.paramCount; i++)
    params += (i ? "&" : "") + Str(u.params[i].name) + "=" + Str(u.params[i].value);
  return {Str(u.scheme), Str(u.host), dirs, Str(u.stem), Str(u.ext), params};
}

// The parse written step by step on a copy that is cut again and again: trim,
// up to the first NUL, scheme in the first 11 bytes, host up to the next
// slash, fragment at the last '#', query at the first '?'.
inline std::vector<std::string> ReferenceFields(std::string s) {
  const char *blanks = " \t\n\r\f\v";
  s.erase(0, s.find_first_not_of(blanks));
  s.erase(s.find_last_not_of(blanks) + 1);
  s = s.c_str();
  std::string scheme, host, dirs, params, ext;
  if (size_t colon = s.find(':'); colon < 11) {
    scheme = s.substr(0, colon);
    s.erase(0, colon + 1);
  }
  if (s.size() >= 2) {
    if (s.rfind("//", 0) == 0) s.erase(0, 2);
    host = s.substr(0, s.find('/'));
    s.erase(0, std::min(s.size(), host.size() + 1));
  }
  if (size_t hash = s.rfind('#'); hash > 0 && hash != std::string::npos) s.erase(hash);
  if (size_t question = s.find('?'); question > 0 && question != std::string::npos) {
    std::string query = s.substr(question + 1);
    s.erase(question);
    for (size_t amp = 0; (amp = query.find("&amp;", amp)) != std::string::npos; amp++)
      query.erase(amp + 1, 4);
    std::istringstream pairs(query);
    for (std::string pair; std::getline(pairs, pair, '&');) {
      if (pair.empty()) continue;
      size_t eq = pair.find('=');
      OrvString name(pair.substr(0, eq).c_str(), -1);
      name.ChangeToChar();
      std::string value = eq == std::string::npos ? "" : pair.substr(eq + 1);
      params += (params.empty() ? "" : "&") + Str(name) + "=" + value.substr(0, value.find('='));
    }
  }
  for (size_t slash; (slash = s.find('/')) != std::string::npos; s.erase(0, slash + 1))
    if (slash > 0) dirs += (dirs.empty() ? "" : ",") + s.substr(0, slash);
  if (size_t dot = s.rfind('.'); dot != std::string::npos) {
    ext = s.substr(dot + 1);
    s.erase(dot);
  }
  return {scheme, host, dirs, s, ext, params};
}
