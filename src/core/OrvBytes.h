#pragma once

#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Copying the short texts that URLs are made of: below a few dozen bytes, a
// pair of overlapping word moves beats a call into the C library, whose setup
// costs more than the work.

// Copies n bytes between areas that do not overlap.
inline void OrvCopyBytes(char* to, const char* from, size_t n) {
  if (n >= 8 && n <= 16) {
    uint64_t head, tail;
    std::memcpy(&head, from, 8);
    std::memcpy(&tail, from + n - 8, 8);
    std::memcpy(to, &head, 8);
    std::memcpy(to + n - 8, &tail, 8);
  } else if (n >= 4 && n < 8) {
    uint32_t head, tail;
    std::memcpy(&head, from, 4);
    std::memcpy(&tail, from + n - 4, 4);
    std::memcpy(to, &head, 4);
    std::memcpy(to + n - 4, &tail, 4);
#ifdef __SSE2__
  } else if (n > 16 && n <= 32) {
    __m128i head = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    __m128i tail = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + n - 16));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), head);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n - 16), tail);
  } else if (n > 32 && n <= 64) {
    const __m128i* in = reinterpret_cast<const __m128i*>(from);
    const __m128i* inEnd = reinterpret_cast<const __m128i*>(from + n - 32);
    __m128i a = _mm_loadu_si128(in), b = _mm_loadu_si128(in + 1);
    __m128i c = _mm_loadu_si128(inEnd), d = _mm_loadu_si128(inEnd + 1);
    __m128i* out = reinterpret_cast<__m128i*>(to);
    __m128i* outEnd = reinterpret_cast<__m128i*>(to + n - 32);
    _mm_storeu_si128(out, a);
    _mm_storeu_si128(out + 1, b);
    _mm_storeu_si128(outEnd, c);
    _mm_storeu_si128(outEnd + 1, d);
#endif
  } else if (n > 16) {
    std::memcpy(to, from, n);
  } else if (n) {
    to[0] = from[0];
    to[n / 2] = from[n / 2];
    to[n - 1] = from[n - 1];
  }
}
