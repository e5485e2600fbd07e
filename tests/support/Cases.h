#pragma once

// Case files under tests/data: one case a line, fields split by tabs; empty
// lines and lines that start with "# " are comments.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// \t \n \r \f \v \0 \\ and \xHH, so that a field can hold any byte; any other
// backslash stays as it is (shape keys are written with their own).
inline std::string Unescape(const std::string& field) {
  static const std::string kNames = "tnrfv0\\";
  static const std::string kBytes("\t\n\r\f\v\0\\", 7);
  std::string out;
  for (size_t i = 0; i < field.size(); i++) {
    const char next = i + 1 < field.size() && field[i] == '\\' ? field[i + 1] : 0;
    if (next == 'x' && i + 3 < field.size()) {
      out += char(std::stoi(field.substr(i + 2, 2), nullptr, 16));
      i += 3;
    } else if (next && kNames.find(next) != std::string::npos) {
      out += kBytes[kNames.find(next)];
      i++;
    } else {
      out += field[i];
    }
  }
  return out;
}

// The rows of a file, every field kept (trailing empty ones too), each row
// padded with empty fields to at least width.
inline std::vector<std::vector<std::string>> ReadCases(const std::string& path, size_t width = 0,
                                                       bool unescape = false) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line == "#" || line.rfind("# ", 0) == 0) continue;
    auto& row = rows.emplace_back();
    for (size_t start = 0, tab = 0; tab != std::string::npos; start = tab + 1) {
      tab = line.find('\t', start);
      std::string field = line.substr(start, tab == std::string::npos ? tab : tab - start);
      row.push_back(unescape ? Unescape(field) : field);
    }
    if (row.size() < width) row.resize(width);
  }
  EXPECT_FALSE(rows.empty()) << "no cases in " << path;
  return rows;
}

// A whole file's bytes.
inline std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream out;
  out << std::ifstream(path, std::ios::binary).rdbuf();
  return out.str();
}

// The saved real pages, in name order.
inline std::vector<std::filesystem::path> RealPagePaths() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages"))
    paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
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
