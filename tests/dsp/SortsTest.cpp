// SPDX-License-Identifier: MIT
#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/dsp.h"

namespace {

using ::testing::ElementsAre;

std::vector<int> countUp(std::size_t n) {
    std::vector<int> idx(n);
    std::iota(idx.begin(), idx.end(), 0);
    return idx;
}

int last(const std::vector<float>& v) {
    return static_cast<int>(v.size()) - 1;
}

/** The textbook form: left part by recursion, right part by iteration. The oracle for where ties
 *  end up. */
void textbookSort(std::vector<float>& v, std::vector<int>& idx, int lo, int hi) {
    const auto at = [](int i) { return static_cast<std::size_t>(i); };
    for (;;) {
        const float pivot = v[at((lo + hi) / 2)];
        int i = lo;
        int j = hi;
        for (;; ++i, --j) {
            while (v[at(i)] > pivot) ++i;
            while (pivot > v[at(j)]) --j;
            if (i >= j) break;
            std::swap(v[at(i)], v[at(j)]);
            std::swap(idx[at(i)], idx[at(j)]);
        }
        if (i - lo >= 2) textbookSort(v, idx, lo, i - 1);
        if (j + 1 >= hi) return;
        lo = j + 1;
    }
}

std::vector<float> valuesWithManyTies(std::mt19937& random, std::size_t n) {
    std::uniform_int_distribution<int> value(0, 12);
    std::vector<float> v(n);
    for (float& x : v) x = static_cast<float>(value(random));
    return v;
}

TEST(QSort3Test, EqualValuesEndInAscendingOrderOfIndex) {
    std::vector<float> v{2.0F, 5.0F, 5.0F, 1.0F};
    std::vector<int> idx = countUp(4);
    QSort3(v.data(), idx.data(), 0, 3);
    EXPECT_THAT(v, ElementsAre(5.0F, 5.0F, 2.0F, 1.0F));
    EXPECT_THAT(idx, ElementsAre(1, 2, 0, 3));
}

TEST(QSort3Test, EqualsAStableSortOnEveryInput) {
    std::mt19937 random(1);
    for (std::size_t n = 1; n < 200; ++n) {
        std::vector<float> v = valuesWithManyTies(random, n);
        std::vector<int> expected = countUp(n);
        std::stable_sort(expected.begin(), expected.end(), [&v](int a, int b) {
            return v[static_cast<std::size_t>(a)] > v[static_cast<std::size_t>(b)];
        });
        std::vector<int> idx = countUp(n);
        QSort3(v.data(), idx.data(), 0, last(v));
        EXPECT_EQ(idx, expected) << n;
        EXPECT_TRUE(std::is_sorted(v.rbegin(), v.rend())) << n;
    }
}

// The tie rule looks at the idx entries themselves, not at where they came from.
TEST(QSort3Test, TheRunThatReachesTheEndIsOrderedToo) {
    std::vector<float> v{9.0F, 4.0F, 4.0F, 4.0F};
    std::vector<int> idx{7, 3, 2, 1};
    QSort3(v.data(), idx.data(), 0, 3);
    EXPECT_THAT(idx, ElementsAre(7, 1, 2, 3));
}

// Pivot 5 stops both scans at once: the two ends are exchanged although they are equal.
TEST(QSortTest, IsNotStable) {
    std::vector<float> v{5.0F, 5.0F, 5.0F};
    std::vector<int> idx = countUp(3);
    QSort(v.data(), idx.data(), 0, 2);
    EXPECT_THAT(idx, ElementsAre(2, 1, 0));
}

TEST(QSortTest, LeavesTiesWhereTheTextbookFormLeavesThem) {
    std::mt19937 random(2);
    for (std::size_t n = 1; n < 200; ++n) {
        std::vector<float> v = valuesWithManyTies(random, n);
        std::vector<float> expected = v;
        std::vector<int> expectedIdx = countUp(n);
        textbookSort(expected, expectedIdx, 0, last(v));
        std::vector<int> idx = countUp(n);
        QSort(v.data(), idx.data(), 0, last(v));
        EXPECT_EQ(v, expected) << n;
        EXPECT_EQ(idx, expectedIdx) << n;
    }
}

TEST(QSortTest, SortsOnlyTheStretchAskedFor) {
    std::vector<float> v{1.0F, 2.0F, 3.0F, 4.0F, 5.0F};
    std::vector<int> idx = countUp(5);
    QSort(v.data(), idx.data(), 1, 3);
    EXPECT_THAT(v, ElementsAre(1.0F, 4.0F, 3.0F, 2.0F, 5.0F));
    EXPECT_THAT(idx, ElementsAre(0, 3, 2, 1, 4));
}

TEST(QSortTest, AnEmptyStretchTouchesNothing) {
    QSort(nullptr, nullptr, 0, -1);
    QSort2(nullptr, 0, -1);
    QSort2_Ascend(nullptr, 5, 2);
    QSort3(nullptr, nullptr, 0, -1);
    std::vector<float> v{2.0F};
    std::vector<int> idx{4};
    QSort3(v.data(), idx.data(), 0, 0);
    EXPECT_THAT(v, ElementsAre(2.0F));
    EXPECT_THAT(idx, ElementsAre(4));
}

TEST(QSortTest, EndsOnNaNAndKeepsEveryEntry) {
    std::mt19937 random(3);
    for (std::size_t n = 1; n < 100; ++n) {
        std::vector<float> v = valuesWithManyTies(random, n);
        for (std::size_t i = 0; i < n; i += 3) v[i] = std::numeric_limits<float>::quiet_NaN();
        std::vector<int> idx = countUp(n);
        QSort3(v.data(), idx.data(), 0, last(v));
        std::sort(idx.begin(), idx.end());
        EXPECT_EQ(idx, countUp(n)) << n;
    }
}

// Every value equals every other for >, so each NaN is a run of one and keeps the place the
// partition gave it.
TEST(QSort3Test, NaNsAreNoTies) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> v{nan, nan, nan};
    std::vector<int> idx = countUp(3);
    QSort3(v.data(), idx.data(), 0, 2);
    EXPECT_THAT(idx, ElementsAre(2, 1, 0));
}

TEST(QSort2Test, SortsIntegersDescending) {
    std::vector<int> v{3, -1, 7, 3, 0};
    QSort2(v.data(), 0, 4);
    EXPECT_THAT(v, ElementsAre(7, 3, 3, 0, -1));
}

TEST(QSort2AscendTest, SortsIntegersAscending) {
    std::vector<int> v{3, -1, 7, 3, 0};
    QSort2_Ascend(v.data(), 0, 4);
    EXPECT_THAT(v, ElementsAre(-1, 0, 3, 3, 7));
}

TEST(QSort2Test, SortsAHundredThousandSortedAndEqualValues) {
    std::vector<int> v = countUp(100000);
    QSort2(v.data(), 0, 99999);
    EXPECT_TRUE(std::is_sorted(v.rbegin(), v.rend()));
    std::fill(v.begin(), v.end(), 5);
    QSort2(v.data(), 0, 99999);
    EXPECT_EQ(v.front(), 5);
}

template <typename T>
class BubSortFormsTest : public ::testing::Test {};
using BubSortForms = ::testing::Types<int, float>;
TYPED_TEST_SUITE(BubSortFormsTest, BubSortForms);

TYPED_TEST(BubSortFormsTest, IsStableAndDescending) {
    std::vector<TypeParam> v{2, 5, 5, 1, 2};
    std::vector<int> idx = countUp(5);
    BubSort(v.data(), idx.data(), 5);
    EXPECT_THAT(v,
                ElementsAre(TypeParam{5}, TypeParam{5}, TypeParam{2}, TypeParam{2}, TypeParam{1}));
    EXPECT_THAT(idx, ElementsAre(1, 2, 0, 4, 3));
}

TEST(BubSortTest, BelowTwoValuesDoesNothing) {
    std::vector<int> v{1, 2};
    std::vector<int> idx{0, 1};
    for (int n : {1, 0, -1, std::numeric_limits<int>::min()}) BubSort(v.data(), idx.data(), n);
    EXPECT_THAT(v, ElementsAre(1, 2));
    EXPECT_THAT(idx, ElementsAre(0, 1));
}

}  // namespace
