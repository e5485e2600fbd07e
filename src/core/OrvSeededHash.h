#pragma once

#include <sys/random.h>

#include <cstdint>
#include <cstring>
#include <ctime>

// A hash keyed by a secret drawn once per process, for indexes that must not
// be crowded by keys crafted against the maps' fixed hash. Nothing that a
// caller sees may depend on it: it only decides where an index looks.

inline uint64_t OrvFoldMultiply(uint64_t a, uint64_t b) {
  unsigned __int128 r = static_cast<unsigned __int128>(a) * b;
  return uint64_t(r) ^ uint64_t(r >> 64);
}

inline const uint64_t* OrvHashSecret() {
  static const struct Secret {
    uint64_t k[2];
    Secret() {
      if (getrandom(k, sizeof k, 0) != ssize_t(sizeof k)) {
        // No entropy source: the clock and an address are still unknown to a page.
        timespec t{};
        clock_gettime(CLOCK_REALTIME, &t);
        k[0] = uint64_t(t.tv_nsec) ^ (uint64_t(t.tv_sec) << 30) ^ uint64_t(uintptr_t(this));
        k[1] = OrvFoldMultiply(k[0] ^ 0x9e3779b97f4a7c15ull, 0xbf58476d1ce4e5b9ull);
      }
      k[0] |= 1;
      k[1] |= 1;
    }
  } secret;
  return secret.k;
}

inline uint32_t OrvSeededHash(const char* key, int32_t length) {
  const uint64_t* k = OrvHashSecret();
  uint64_t h = k[0] ^ uint64_t(uint32_t(length));
  int32_t i = 0;
  for (; length - i >= 8; i += 8) {
    uint64_t w;
    std::memcpy(&w, key + i, 8);
    h = OrvFoldMultiply(h ^ w, k[1]);
  }
  if (i < length) {
    uint64_t w = 0;
    std::memcpy(&w, key + i, size_t(length - i));
    h = OrvFoldMultiply(h ^ w ^ 0x8000000000000000ull, k[1]);
  }
  return uint32_t(OrvFoldMultiply(h, k[0] ^ 0xa0761d6478bd642full));
}

inline uint32_t OrvSeededHash(uint64_t key) {
  const uint64_t* k = OrvHashSecret();
  return uint32_t(OrvFoldMultiply(OrvFoldMultiply(key ^ k[0], k[1]), k[0] ^ 0xa0761d6478bd642full));
}
