#include <algorithm>
#include <cstdint>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvWebPageUrl.h"
#include "url/OrvExactQuickSort.h"

// Long parameter lists are sorted through integer ranks: when all names
// differ, any sort gives the one sorted order; otherwise the quicksort runs
// on (rank, position) pairs, which makes the same moves as on the names at
// the cost of an integer compare each, and any part of the range that it
// reaches with no two equal ranks is likewise just sorted. Either way the
// slots are then put in place once.

namespace {

constexpr int kRankedFrom = 24;

struct RankedSlot {
  int32_t rank;
  int32_t position;
};

void SortRanked(OrvUrlParam* params, int first, int n) {
  OrvOwned<int32_t[]> orderOwned = OrvAllocOwned<int32_t[]>(size_t(n));
  int32_t* order = orderOwned.get();
  for (int k = 0; k < n; k++) order[k] = k;
  OrvUrlParam* base = params + first;
  std::sort(order, order + n, [base](int32_t x, int32_t y) {
    int32_t c = OrvWebPageUrl::CompareParamNames(&base[x], &base[y]);
    return c != 0 ? c < 0 : x < y;
  });
  bool distinct = true;
  for (int k = 1; k < n && distinct; k++)
    distinct = OrvWebPageUrl::CompareParamNames(&base[order[k - 1]], &base[order[k]]) != 0;

  if (!distinct) {
    OrvOwned<RankedSlot[]> rankedOwned = OrvAllocOwned<RankedSlot[]>(size_t(n));
    RankedSlot* ranked = rankedOwned.get();
    int32_t rank = 0;
    for (int k = 0; k < n; k++) {
      if (k && OrvWebPageUrl::CompareParamNames(&base[order[k - 1]], &base[order[k]]) != 0) rank++;
      ranked[order[k]] = {rank, order[k]};
    }
    // seen[r] holds the number of the last range in which rank r was met.
    OrvOwned<int32_t[]> seenOwned = OrvAllocOwned<int32_t[]>(size_t(rank) + 1);
    int32_t* seen = seenOwned.get();
    for (int32_t r = 0; r <= rank; r++) seen[r] = -1;
    int32_t rangeNumber = 0;
    auto distinctSorted = [seen, &rangeNumber](RankedSlot* a, int from, int to) {
      int32_t stamp = rangeNumber++;
      for (int k = from; k <= to; k++) {
        if (seen[a[k].rank] == stamp) return false;
        seen[a[k].rank] = stamp;
      }
      std::sort(a + from, a + to + 1,
                [](const RankedSlot& x, const RankedSlot& y) { return x.rank < y.rank; });
      return true;
    };
    OrvExactQuickSort(
        ranked, 0, n - 1,
        [](const RankedSlot& x, const RankedSlot& y) {
          return x.rank < y.rank ? -1 : (x.rank > y.rank ? 1 : 0);
        },
        distinctSorted);
    for (int k = 0; k < n; k++) order[k] = ranked[k].position;
  }

  OrvOwnedArray<OrvUrlParam> moved = OrvNewOwnedArray<OrvUrlParam>(size_t(n));
  for (int k = 0; k < n; k++) moved[k] = std::move(base[order[k]]);
  for (int k = 0; k < n; k++) base[k] = std::move(moved[k]);
}

}  // namespace

void OrvWebPageUrl::SortParams(OrvUrlParam* params, int first, int last, OrvParamCompare compare) {
  if (!params || first >= last) return;
  if (compare == CompareParamNames && last - first + 1 >= kRankedFrom) {
    // Already in order: the quicksort would leave it as it is.
    bool ordered = true;
    for (int k = first; k < last && ordered; k++)
      ordered = compare(&params[k], &params[k + 1]) <= 0;
    if (!ordered) SortRanked(params, first, last - first + 1);
    return;
  }
  OrvExactQuickSort(params, first, last, [compare](const OrvUrlParam& x, const OrvUrlParam& y) {
    return compare(&x, &y);
  });
}
