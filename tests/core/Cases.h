#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// Case files under tests/data: one case a line, fields split by tabs, lines
// starting with '#' skipped. Fields take \t \n \r \f \v \0 \\ and \xHH, so
// that any byte can be written.
inline std::string Unescape(const std::string& field) {
  std::string out;
  for (size_t i = 0; i < field.size(); i++) {
    const size_t code = field[i] == '\\' ? std::string("tnrfv0\\x").find(field[i + 1]) : 8;
    if (code == 8) out += field[i];
    if (code < 7) out += std::string("\t\n\r\f\v\0\\", 7)[code], i++;
    if (code == 7) out += char(std::stoi(field.substr(i + 2, 2), nullptr, 16)), i += 3;
  }
  return out;
}

inline std::vector<std::vector<std::string>> Cases(const std::string& name) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream in(std::string(ORV_CASES_DIR) + "/" + name);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    rows.emplace_back();
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, '\t');)
      rows.back().push_back(Unescape(field));
    rows.back().resize(std::max<size_t>(rows.back().size(), 8));  // empty fields at the end
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

// "1 5 9:12 0:64:4": numbers, and ranges from:to:step.
inline std::vector<int32_t> Numbers(const std::string& text) {
  std::vector<int32_t> out;
  std::istringstream in(text);
  for (int from; in >> from;) {
    int to = from, step = 1;
    if (in.peek() == ':') in.ignore() >> to;
    if (in.peek() == ':') in.ignore() >> step;
    for (int v = from; step > 0 ? v <= to : v >= to; v += step) out.push_back(v);
  }
  return out;
}
