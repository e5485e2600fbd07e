#pragma once

#include <string>

#include "orvwebpage/OrvWebPageUrl.h"

inline std::string Str(const OrvString& s) { return s.buf ? std::string(s.buf, s.len) : ""; }

inline std::string Dirs(const OrvWebPageUrl& u) {
  std::string out;
  for (int32_t i = 0; i < u.dirs.count; i++) out += (i ? "," : "") + std::string(u.dirs[i]);
  return out;
}

inline std::string Params(const OrvWebPageUrl& u) {
  std::string out;
  for (int32_t i = 0; i < u.paramCount; i++)
    out += (i ? "&" : "") + Str(u.params[i].name) + "=" + Str(u.params[i].value);
  return out;
}

// Every field of a parsed record in one line, for comparisons.
inline std::string Summary(const OrvWebPageUrl& u) {
  return Str(u.scheme) + " | " + Str(u.host) + " | " + Dirs(u) + " | " + Str(u.stem) + " | " +
         Str(u.ext) + " | " + Params(u);
}
