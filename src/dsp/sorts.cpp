// SPDX-License-Identifier: MIT
// Quicksort after C. A. R. Hoare with the middle element as pivot, in the variants the public
// header names, and a bubble sort for small stable sorts.
//
// Neither half of a partition reaches into the other, so the order in which the halves are sorted
// cannot show in the result. The shorter one is sorted by recursion and the longer one in the loop,
// which bounds the depth by log2 of the length even for input made to defeat the pivot.
#include <cstdint>
#include <utility>

#include "beatatlas/dsp.h"

namespace {

constexpr auto kDescending = [](auto a, auto b) { return a > b; };
constexpr auto kAscending = [](auto a, auto b) { return a < b; };

/** A range lo … hi of an array, both ends included. */
struct Range {
    int lo;
    int hi;

    std::int64_t distance() const { return static_cast<std::int64_t>(hi) - lo; }
    int middle() const {
        return static_cast<int>((static_cast<std::int64_t>(lo) + static_cast<std::int64_t>(hi)) /
                                2);
    }
};

/** The two ranges on either side of the pivot's value. */
struct Halves {
    Range left;
    Range right;
};

template <typename T, typename Before, typename Exchange>
Halves partition(const T* v, Range all, Before before, Exchange exchange) {
    const T pivot = v[all.middle()];
    int i = all.lo;
    int j = all.hi;
    // Each scan is stopped by the pivot or by what the last exchange left behind, so neither leaves
    // the range.
    for (;;) {
        while (before(v[i], pivot)) ++i;
        while (before(pivot, v[j])) --j;
        if (i >= j) return {{all.lo, i - 1}, {j + 1, all.hi}};
        exchange(i++, j--);
    }
}

template <typename T, typename Before, typename Exchange>
void quickSort(const T* v, Range all, Before before, Exchange exchange) {
    while (all.lo < all.hi) {
        const Halves halves = partition(v, all, before, exchange);
        const bool leftIsShorter = halves.left.distance() < halves.right.distance();
        quickSort(v, leftIsShorter ? halves.left : halves.right, before, exchange);
        all = leftIsShorter ? halves.right : halves.left;
    }
}

template <typename T, typename Before>
void sortAlone(T* v, int lo, int hi, Before before) {
    quickSort(v, {lo, hi}, before, [v](int i, int j) { std::swap(v[i], v[j]); });
}

template <typename T>
auto exchangeBoth(T* v, int* idx) {
    return [v, idx](int i, int j) {
        std::swap(v[i], v[j]);
        std::swap(idx[i], idx[j]);
    };
}

template <typename T>
void bubbleSortDescending(T* v, int* idx, int n) {
    if (n < 2) return;
    const auto exchange = exchangeBoth(v, idx);
    for (int pass = 0; pass < n - 1; ++pass)
        for (int k = n - 1; k > pass; --k)
            if (v[k] > v[k - 1]) exchange(k - 1, k);
}

}  // namespace

void QSort(float* v, int* idx, int lo, int hi) {
    quickSort(v, {lo, hi}, kDescending, exchangeBoth(v, idx));
}

void QSort2(int* v, int lo, int hi) {
    sortAlone(v, lo, hi, kDescending);
}

void QSort2_Ascend(int* v, int lo, int hi) {
    sortAlone(v, lo, hi, kAscending);
}

void QSort3(float* v, int* idx, int lo, int hi) {
    QSort(v, idx, lo, hi);
    int runStart = lo;
    for (int k = lo; k < hi; ++k) {
        if (v[k] == v[k + 1]) continue;  // false for NaN: each NaN is a run of its own
        QSort2_Ascend(idx, runStart, k);
        runStart = k + 1;
    }
    QSort2_Ascend(idx, runStart, hi);
}

void BubSort(int* v, int* idx, int n) {
    bubbleSortDescending(v, idx, n);
}

void BubSort(float* v, int* idx, int n) {
    bubbleSortDescending(v, idx, n);
}
