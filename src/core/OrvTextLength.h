#pragma once

#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"

// A string holds at most INT32_MAX bytes; a longer text cannot be had, which
// ends like exhausted memory rather than wrapping a 32-bit length.
inline uint32_t OrvCheckedLength(long n) {
  if (n > long(INT32_MAX)) OrvOutOfMemory();
  return uint32_t(n);
}

// Byte count of a (text, length) argument: a negative length means the text
// is NUL-terminated, and NULL stands for the empty text.
inline uint32_t OrvTextLength(const char* text, long length) {
  if (!text) return 0;
  if (length < 0) return OrvCheckedLength(long(std::strlen(text)));
  return OrvCheckedLength(length);
}
