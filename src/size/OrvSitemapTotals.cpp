#include "size/OrvSitemapTotals.h"

#include <cmath>
#include <vector>

namespace {

struct Sums {
  double est = 0, low = 0, high = 0, least = 0, most = 0;
  int32_t answered = 0;
  void Add(double e, double l, double h) {
    least = answered == 0 || e < least ? e : least;
    most = answered == 0 || e > most ? e : most;
    est += e;
    low += l;
    high += h;
    answered++;
  }
};

}  // namespace

void OrvSitemapTotals(const OrvSitemapFile* files, int32_t count, int64_t& pages, int64_t& low,
                      int64_t& high) {
  std::vector<Sums, OrvAllocator<Sums>> below(size_t(count > 0 ? count : 0));
  Sums top;
  // Children come after their index, so walking backwards sums every index's
  // children before the index itself.
  for (int32_t i = count - 1; i >= 0; i--) {
    const OrvSitemapFile& file = files[i];
    double est = double(file.pages), lo = est, hi = est;
    const Sums& kids = below[size_t(i)];
    if (file.isIndex && kids.answered > 0) {
      double unread = file.children > kids.answered ? file.children - kids.answered : 0;
      est += kids.est + unread * kids.est / kids.answered;
      lo += kids.low + unread * kids.least;
      hi += kids.high + unread * kids.most;
    }
    if (!file.answered) continue;
    if (file.parent >= 0 && file.parent < i)
      below[size_t(file.parent)].Add(est, lo, hi);
    else if (file.parent < 0)
      top.Add(est, lo, hi);
  }
  pages = int64_t(std::llround(top.est));
  low = int64_t(std::floor(top.low + 1e-9));
  high = int64_t(std::ceil(top.high - 1e-9));
  if (low > pages) low = pages;
  if (high < pages) high = pages;
}
