#pragma once

#include <cstddef>

#include "core/OrvOwned.h"

// The parser has two weak spots that a page can hit by accident or on purpose:
// it takes a NUL byte between elements for the end of the page, and it checks
// each attribute of a tag against all before it, so a tag with a million
// attributes would take hours. A tamed copy drops NUL bytes (browsers skip
// them too) and keeps only the first OrvMaxAttributes attributes of a tag.
// Returns null when the page needs neither, else the copy, with length
// updated. A page that may be in a 16- or 32-bit
// encoding keeps its NUL bytes, which belong to its characters.
constexpr int OrvMaxAttributes = 256;

[[nodiscard]] OrvOwned<char> OrvTamePage(const char* text, size_t& length, bool mayBeWide);
