#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Pages are mostly ASCII, so they are read eight bytes at a time while no
// byte has its high bit set: true when the next eight (of left) are such.
inline bool OrvIsAsciiWord(const unsigned char* p, size_t left) {
  uint64_t word;
  return left >= 8 && (std::memcpy(&word, p, 8), (word & 0x8080808080808080ull) == 0);
}

// Bytes of the well-formed UTF-8 sequence that starts p (of n), or 0 when none
// does; bad is then how many bytes one replacement character stands for: the
// longest start that could still have become a well-formed sequence.
inline size_t OrvUtf8Sequence(const unsigned char* p, size_t n, size_t& bad) {
  unsigned char c = p[0];
  bad = 1;
  if (c < 0x80) return 1;
  size_t extra;
  unsigned char low = 0x80, high = 0xBF;  // bounds of the second byte
  if (c >= 0xC2 && c <= 0xDF) {
    extra = 1;
  } else if (c >= 0xE0 && c <= 0xEF) {
    extra = 2;
    if (c == 0xE0) low = 0xA0;
    if (c == 0xED) high = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    extra = 3;
    if (c == 0xF0) low = 0x90;
    if (c == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  for (size_t k = 1; k <= extra; k++) {
    if (k >= n || p[k] < (k == 1 ? low : 0x80) || p[k] > (k == 1 ? high : 0xBF)) return 0;
    bad = k + 1;
  }
  return extra + 1;
}
