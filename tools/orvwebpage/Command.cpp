#include "Command.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

void CheckTextSize(size_t size, const std::string& what) {
  if (size > kMaxTextSize)
    throw CommandError(what + " has " + std::to_string(size) + " bytes, more than the " +
                       std::to_string(kMaxTextSize) + " a text may have");
}

std::string ReadInput(const std::string& path) {
  if (path == "-") {
    std::ostringstream all;
    all << std::cin.rdbuf();
    return all.str();
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("cannot read " + path);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ForEachInputLine(const std::string& text, const std::function<void(std::string_view)>& visit) {
  size_t start = 0;
  for (size_t number = 1; start < text.size(); number++) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    CheckTextSize(line.size(), "line " + std::to_string(number));
    if (!line.empty()) visit(line);
  }
}
