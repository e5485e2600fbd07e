#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageUrl.h"
#include "support/Cases.h"

inline std::string Str(const OrvString &s) { return s.len > 0 ? std::string(s.buf, s.len) : ""; }

// The parsed fields: scheme, host, directories, stem, extension, parameters.
inline std::vector<std::string> Fields(const OrvWebPageUrl &u) {
  std::string dirs, params;
  for (int32_t i = 0; i < u.dirs.count; i++) dirs += (i ? "," : "") + std::string(u.dirs[i]);
  for (int32_t i = 0; i < u.paramCount; i++)
    params += (i ? "&" : "") + Str(u.params[i].name) + "=" + Str(u.params[i].value);
  return {Str(u.scheme), Str(u.host), dirs, Str(u.stem), Str(u.ext), params};
}
