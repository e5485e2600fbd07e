#pragma once

#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "core/OrvOwned.h"

// Where a few chosen bytes occur in a text, one bit per text byte and chosen
// byte, taken in one pass. Searches for the first or last of them in a range
// then cost a few bit operations instead of a scan each, which is what makes
// splitting short texts such as URLs cheap.
template <int Kinds>
class OrvByteMasks {
 public:
  // readable (at least n) is how many bytes at text may be read; bytes
  // behind n are looked at but lie outside every range that is searched.
  OrvByteMasks(const char* text, int32_t n, int32_t readable, const char (&wanted)[Kinds]) {
    if (n < 0) n = 0;
    // In 64 bits: texts of nearly 2^31 bytes would wrap the word count.
    words = n > 0 ? int32_t((int64_t(n) + 63) / 64) : 1;
    if (words > kLocalWords) heap = OrvAllocOwned<uint64_t[]>(size_t(words) * Kinds);
    bits = heap ? heap.get() : local;
    Fill(text, n, readable < n ? n : readable, wanted);
  }
  OrvByteMasks(const OrvByteMasks&) = delete;
  OrvByteMasks& operator=(const OrvByteMasks&) = delete;

  // Index of the first byte of the given kind in [from, to), or -1.
  int32_t First(int kind, int32_t from, int32_t to) const {
    if (from >= to) return -1;
    const uint64_t* row = bits + size_t(kind) * size_t(words);
    int32_t w = from >> 6, lastWord = (to - 1) >> 6;
    uint64_t m = row[w] & (~uint64_t(0) << (from & 63));
    for (; w < lastWord; m = row[++w])
      if (m) return (w << 6) + __builtin_ctzll(m);
    m &= Below(to - (w << 6));
    return m ? (w << 6) + __builtin_ctzll(m) : -1;
  }

  // Index of the last byte of the given kind in [from, to), or -1.
  int32_t Last(int kind, int32_t from, int32_t to) const {
    if (from >= to) return -1;
    const uint64_t* row = bits + size_t(kind) * size_t(words);
    int32_t w = (to - 1) >> 6, firstWord = from >> 6;
    uint64_t m = row[w] & Below(to - (w << 6));
    for (; w > firstWord; m = row[--w])
      if (m) return (w << 6) + 63 - __builtin_clzll(m);
    m &= ~uint64_t(0) << (from & 63);
    return m ? (w << 6) + 63 - __builtin_clzll(m) : -1;
  }

 private:
  static constexpr int32_t kLocalWords = 4;  // texts up to 256 bytes need no allocation
  int32_t words;
  uint64_t* bits;
  OrvOwned<uint64_t[]> heap;  // empty while local holds the bits
  uint64_t local[kLocalWords * Kinds];

  // Bits below position k of a word, k in 1..64.
  static uint64_t Below(int32_t k) { return k >= 64 ? ~uint64_t(0) : (uint64_t(1) << k) - 1; }

  void Fill(const char* text, int32_t n, int32_t readable, const char (&wanted)[Kinds]) {
    for (int32_t w = 0; w < words; w++) {
      uint64_t found[Kinds] = {};
      // Positions in 64 bits: the last word of a text near 2^31 bytes ends past
      // the 32-bit range.
      const int64_t start = int64_t(w) << 6, end = start + 64;
#ifdef __SSE2__
      if (readable - start >= 64) {
        // A whole word can be read: four loads, fixed shifts.
        const __m128i* in = reinterpret_cast<const __m128i*>(text + start);
        __m128i v0 = _mm_loadu_si128(in), v1 = _mm_loadu_si128(in + 1);
        __m128i v2 = _mm_loadu_si128(in + 2), v3 = _mm_loadu_si128(in + 3);
#pragma GCC unroll 8
        for (int k = 0; k < Kinds; k++) {
          __m128i needle = _mm_set1_epi8(wanted[k]);
          uint64_t m0 = uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v0, needle)));
          uint64_t m1 = uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v1, needle)));
          uint64_t m2 = uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v2, needle)));
          uint64_t m3 = uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v3, needle)));
          found[k] = m0 | m1 << 16 | m2 << 32 | m3 << 48;
        }
      } else {
        for (int64_t at = start; at < n && at < end; at += 16) {
          __m128i v;
          if (readable - at >= 16) {
            v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at));
          } else {
            alignas(16) char tail[16] = {};
            std::memcpy(tail, text + at, size_t(n - at));
            v = _mm_load_si128(reinterpret_cast<const __m128i*>(tail));
          }
#pragma GCC unroll 8
          for (int k = 0; k < Kinds; k++) {
            uint32_t hits =
                uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(wanted[k]))));
            found[k] |= uint64_t(hits) << (at & 63);
          }
        }
      }
#else
      (void)readable;
      for (int64_t i = start; i < n && i < end; i++)
        for (int k = 0; k < Kinds; k++)
          if (text[i] == wanted[k]) found[k] |= uint64_t(1) << (i & 63);
#endif
#pragma GCC unroll 8
      for (int k = 0; k < Kinds; k++) bits[size_t(k) * size_t(words) + size_t(w)] = found[k];
    }
  }
};
