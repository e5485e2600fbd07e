#pragma once

// Texts and tables of the site-size code: standard containers whose memory
// comes from the library's allocation helper.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/OrvMemory.h"

using OrvSizeText = std::basic_string<char, std::char_traits<char>, OrvAllocator<char>>;

template <class T>
using OrvSizeList = std::vector<T, OrvAllocator<T>>;

struct OrvSizeTextHash {
  std::size_t operator()(const OrvSizeText& text) const noexcept {
    return std::hash<std::string_view>()(std::string_view(text.data(), text.size()));
  }
};

template <class T>
using OrvSizeTextMap = std::unordered_map<OrvSizeText, T, OrvSizeTextHash, std::equal_to<>,
                                          OrvAllocator<std::pair<const OrvSizeText, T>>>;

using OrvSizeTextSet =
    std::unordered_set<OrvSizeText, OrvSizeTextHash, std::equal_to<>, OrvAllocator<OrvSizeText>>;
