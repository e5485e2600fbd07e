#pragma once

// How many there are of something seen on two samples of pages, from how
// many of those seen on the one are seen on the other: Chapman's form of the
// two-sample capture-recapture estimate, with a normal 95% interval. n1 and
// n2 count the distinct things each sample saw, both how many both saw.

#include <algorithm>
#include <cmath>
#include <cstdint>

// The most a recapture figure may be, in times what was seen.
constexpr double kMostUnseen = 2.5;

struct OrvRecapture {
  double estimate = 0, low = 0, high = 0;
};

inline OrvRecapture OrvChapman(int64_t n1, int64_t n2, int64_t both) {
  OrvRecapture r;
  double a = double(n1), b = double(n2), m = double(std::min({both, n1, n2}));
  double seen = a + b - m;
  r.estimate = r.low = r.high = seen;
  if (n1 <= 0 || n2 <= 0) {
    // One sample alone says nothing of what it missed.
    r.high = seen * 2;
    return r;
  }
  // Samples that hardly meet say little more than "many more": the figure
  // stays within a few times what was seen, the interval says the rest.
  double n = std::min((a + 1) * (b + 1) / (m + 1) - 1, seen * kMostUnseen);
  double var = (a + 1) * (b + 1) * (a - m) * (b - m) / ((m + 1) * (m + 1) * (m + 2));
  double half = 1.96 * std::sqrt(var);
  r.estimate = std::max(seen, n);
  r.low = std::max(seen, n - half);
  r.high = std::max(r.estimate, std::min(n + half, seen * 2 * kMostUnseen));
  return r;
}
