#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// Every target reads its input the same way: lines split at '\n', kept as
// they are otherwise (a CR, a tab or a NUL stays part of its line). An empty
// input is one empty line, so every target always has a first line.
inline std::vector<std::string_view> FuzzLines(const uint8_t* data, size_t size) {
  std::string_view all(reinterpret_cast<const char*>(data), size);
  std::vector<std::string_view> lines;
  size_t from = 0;
  for (;;) {
    size_t end = all.find('\n', from);
    if (end == std::string_view::npos) {
      lines.push_back(all.substr(from));
      return lines;
    }
    lines.push_back(all.substr(from, end - from));
    from = end + 1;
  }
}

// Reads every byte of a text, so that a length past its storage shows up
// under the address sanitizer.
inline uint32_t FuzzTouch(const char* text, long length) {
  uint32_t sum = 0;
  for (long i = 0; text && i < length; i++) sum += uint8_t(text[i]);
  return sum;
}
