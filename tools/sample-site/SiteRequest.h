#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// A request target split into its path and its query parameters, in order.
struct SiteRequest {
  std::string path;
  std::vector<std::pair<std::string, std::string>> params;
  std::string root;  // "http://127.0.0.1:PORT" when served, for absolute URLs; else empty

  // The value of the first parameter of that name, or nullptr.
  const std::string* Param(const std::string& name) const;
  // Only the parameters named, each once and in the order given.
  bool HasExactly(const std::vector<std::string>& names) const;
};

// Splits "/path?a=1&b=2" (percent-decoding the path and the values).
SiteRequest ParseTarget(const std::string& target);

// A whole decimal number from 0 to 2^31 - 1 without sign, blanks or leading
// zeros; -1 for anything else.
int64_t ParseCount(const std::string* text);
