#pragma once

#include <cstdint>

// Numbers drawn from a seed and the identity of what they describe, so any
// page can be generated alone, in any order, always the same for one seed.
class SiteRandom {
 public:
  SiteRandom(uint64_t seed, uint64_t a, uint64_t b = 0, uint64_t c = 0)
      : state(Mix(Mix(Mix(seed ^ 0x9e3779b97f4a7c15ULL) ^ a) ^ (b * 0x632be59bd9b4e019ULL)) ^
              (c * 0x85ebca77c2b2ae63ULL)) {}

  uint64_t Next() {
    state += 0x9e3779b97f4a7c15ULL;
    return Mix(state);
  }
  // From lo to hi, both included.
  int64_t Between(int64_t lo, int64_t hi) {
    if (hi <= lo) return lo;
    return lo + int64_t(Next() % uint64_t(hi - lo + 1));
  }
  bool Chance(int percent) { return Between(0, 99) < percent; }

 private:
  static uint64_t Mix(uint64_t z) {
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }
  uint64_t state;
};
