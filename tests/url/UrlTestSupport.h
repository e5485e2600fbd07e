#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageUrl.h"

inline std::string Str(const OrvString &s) { return s.len > 0 ? std::string(s.buf, s.len) : ""; }

// A case file: one case a line (links.txt is one too), fields split by tabs, lines from "# " on are
// comments.
inline std::vector<std::vector<std::string>> ReadCases(const std::string &path) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.rfind("# ", 0) == 0) continue;
    std::istringstream fields(line + "\t");
    auto &row = rows.emplace_back();
    for (std::string field; std::getline(fields, field, '\t');) row.push_back(field);
  }
  EXPECT_FALSE(rows.empty()) << "no cases in " << path;
  return rows;
}

// Input fields spell the bytes a line cannot hold as \xHH.
inline std::string Unescape(std::string s) {
  for (size_t i = s.find("\\x"); i != std::string::npos; i = s.find("\\x", i + 1))
    s.replace(i, 4, 1, char(std::stoi(s.substr(i + 2, 2), nullptr, 16)));
  return s;
}

// The parsed fields: scheme, host, directories, stem, extension, parameters.
inline std::vector<std::string> Fields(const OrvWebPageUrl &u) {
  std::string dirs, params;
  for (int32_t i = 0; i < u.dirs.count; i++) dirs += (i ? "," : "") + std::string(u.dirs[i]);
  for (int32_t i = 0; i < u.paramCount; i++)
    params += (i ? "&" : "") + Str(u.params[i].name) + "=" + Str(u.params[i].value);
  return {Str(u.scheme), Str(u.host), dirs, Str(u.stem), Str(u.ext), params};
}
