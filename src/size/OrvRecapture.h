#pragma once

// How many there are of something seen on a sample of pages, from how often
// the same ones recur: the bias-corrected Chao1 estimator, with its
// log-normal 95% interval. f1 and f2 count the things seen on exactly one and
// exactly two pages; seen is all the distinct ones.

#include <cmath>
#include <cstdint>

struct OrvRecapture {
  double estimate = 0, low = 0, high = 0;
};

inline OrvRecapture OrvChao1(int64_t seen, int64_t f1, int64_t f2) {
  OrvRecapture r;
  r.estimate = r.low = r.high = double(seen);
  if (seen <= 0 || f1 <= 0) return r;
  double a = double(f1), b = double(f2);
  double unseen = a * (a - 1) / (2 * (b + 1));
  double var = a * (a - 1) / (2 * (b + 1)) +
               a * (2 * a - 1) * (2 * a - 1) / (4 * (b + 1) * (b + 1)) +
               a * a * (a - 1) * (a - 1) / (4 * std::pow(b + 1, 4));
  r.estimate = double(seen) + unseen;
  if (unseen <= 0) {
    // Nothing left unseen by the estimator; the interval still allows a few.
    r.high = double(seen) + std::sqrt(var);
    return r;
  }
  double k = std::exp(1.96 * std::sqrt(std::log(1 + var / (unseen * unseen))));
  r.low = double(seen) + unseen / k;
  r.high = double(seen) + unseen * k;
  return r;
}
