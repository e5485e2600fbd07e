#pragma once

#include <utility>

// The parameter quicksort: first element as pivot, hole-filling partition,
// elements equal to the pivot passed over by both scans. Its order among
// equal elements is observable, so every variant must make exactly these
// moves. Moving instead of copying is the same, since each source slot is
// the hole that is filled next. It recurses only into the smaller side, and
// leaves a non-decreasing range at once, which is what the partitions would
// leave anyway. settle(a, first, last) may finish a range whose outcome it
// knows by other means (putting it in that order) and then returns true.
template <class T, class Compare, class Settle>
void OrvExactQuickSort(T* a, int first, int last, Compare compare, Settle settle) {
  while (first < last) {
    bool ordered = true;
    for (int k = first; k < last && ordered; k++) ordered = compare(a[k], a[k + 1]) <= 0;
    if (ordered || settle(a, first, last)) return;

    T pivot = std::move(a[first]);
    int i = first, j = last;
    while (i < j) {
      while (i < j && compare(a[j], pivot) >= 0) j--;
      a[i] = std::move(a[j]);
      while (i < j && compare(a[i], pivot) <= 0) i++;
      a[j] = std::move(a[i]);
    }
    a[i] = std::move(pivot);

    if (i - first < last - i) {
      OrvExactQuickSort(a, first, i - 1, compare, settle);
      first = i + 1;
    } else {
      OrvExactQuickSort(a, i + 1, last, compare, settle);
      last = i - 1;
    }
  }
}

template <class T, class Compare>
void OrvExactQuickSort(T* a, int first, int last, Compare compare) {
  OrvExactQuickSort(a, first, last, compare, [](T*, int, int) { return false; });
}
