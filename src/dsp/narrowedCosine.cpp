// SPDX-License-Identifier: MIT
#include "dsp/narrowedCosine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

constexpr int kAtOnce = 64;  // a whole number of vectors
constexpr double kDoubt = 0x1p-44;
/** So far the number of quarter turns has few enough bits to be multiplied by half of pi without
 *  rounding. */
constexpr double kLargestAngle = 100000.0;

// Half of pi in three pieces, the first of 33 bits and the second of as many.
constexpr double kHalfPi1 = 0x1.921fb544p+0;
constexpr double kHalfPi2 = 0x1.0b4611a6p-34;
constexpr double kHalfPi3 = 0x1.3198a2e037073p-69;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;
/** Added and taken away, it rounds to a whole number; on the way that number stands in the last
 *  bits. */
constexpr double kRounder = 0x1.8p+52;

/** 1 / n! with the signs of a cosine's or a sine's series. */
constexpr double seriesTerm(int n) {
    double factorial = 1.0;
    for (int i = 2; i <= n; ++i) factorial *= i;
    return ((n / 2) % 2 == 0 ? 1.0 : -1.0) / factorial;
}

constexpr std::array<double, 12> termsFrom(int first) {
    std::array<double, 12> terms{};
    for (int i = 0; i < 12; ++i) terms[static_cast<std::size_t>(i)] = seriesTerm(first + (2 * i));
    return terms;
}

constexpr std::array<double, 12> kCosineTerms = termsFrom(0);  // of even powers
constexpr std::array<double, 12> kSineTerms = termsFrom(1);    // of odd ones

template <class Vector>
BEATATLAS_LANES void series(const std::array<double, 12>& terms, const Vector& square,
                            Vector& sum) {
    sum = square * terms[11];
    for (std::size_t i = 10; i > 0; --i) sum = (sum + terms[i]) * square;
    sum += terms[0];
}

/** Cosine and sine of the angles in the lanes, 0 … kLargestAngle. What is left of an angle after
 *  its quarter turns is at most a quarter turn, to either side, in every rounding mode. */
template <std::size_t kWidth>
struct Tone {
    using Vector = Lanes<double, kWidth>;
    using Bits = Lanes<std::int64_t, kWidth>;

    BEATATLAS_LANES void turn(const Vector& angle) {
        const Vector counted = (angle * kTwoOverPi) + kRounder;
        const Vector quarters = counted - kRounder;
        const Vector rest =
            ((angle - (quarters * kHalfPi1)) - (quarters * kHalfPi2)) - (quarters * kHalfPi3);
        const Vector square = rest * rest;
        Vector c;
        Vector s;
        series(kCosineTerms, square, c);
        series(kSineTerms, square, s);
        s *= rest;
        Bits quadrant;
        std::memcpy(&quadrant, &counted, sizeof quadrant);
        cosine = (quadrant & 1) == 0 ? c : s;
        sine = (quadrant & 1) == 0 ? s : c;
        cosine = ((quadrant + 1) & 2) == 0 ? cosine : -cosine;
        sine = (quadrant & 2) == 0 ? sine : -sine;
    }

    Vector cosine;
    Vector sine;
};

/** What a value lies between, narrowed. */
struct Bounds {
    std::array<float, kAtOnce> low;
    std::array<float, kAtOnce> high;

    template <class Vector>
    BEATATLAS_LANES void put(const Vector& value, int at) {
        using Narrow = Lanes<float, sizeof(Vector) / sizeof(double)>;
        storeLanes(__builtin_convertvector(value - kDoubt, Narrow), low.data() + at);
        storeLanes(__builtin_convertvector(value + kDoubt, Narrow), high.data() + at);
    }
};

template <std::size_t kWidth>
struct ToneBounds {
    BEATATLAS_LANES static void run(const double* angles, Bounds* cosines, Bounds* sines) {
        for (int i = 0; i < kAtOnce; i += static_cast<int>(kWidth)) {
            Lanes<double, kWidth> angle;
            loadLanes(angle, angles + i);
            Tone<kWidth> tone;
            tone.turn(angle);
            cosines->put(tone.cosine, i);
            sines->put(tone.sine, i);
        }
    }
};

template <std::size_t kWidth>
struct HannBounds {
    BEATATLAS_LANES static void run(const double* angles, Bounds* heights) {
        for (int i = 0; i < kAtOnce; i += static_cast<int>(kWidth)) {
            Lanes<double, kWidth> angle;
            loadLanes(angle, angles + i);
            Tone<kWidth> tone;
            tone.turn(angle);
            heights->put(0.5 - (0.5 * tone.cosine), i);
        }
    }
};

bool isInRange(double angle) {
    return angle >= 0.0 && angle <= kLargestAngle;
}

/** 0 where there is no angle, or one out of range. */
std::array<double, kAtOnce> anglesInRange(const double* angles, int count) {
    std::array<double, kAtOnce> all{};
    std::transform(angles, angles + count, all.begin(),
                   [](double angle) { return isInRange(angle) ? angle : 0.0; });
    return all;
}

template <class Exact>
void settle(const Bounds& bounds, const double* angles, int count, float* out, Exact exact) {
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const bool isSure = bounds.low[at] == bounds.high[at] && isInRange(angles[i]);
        out[i] = isSure ? bounds.low[at] : exact(angles[i]);
    }
}

}  // namespace

void narrowedTone(const double* angles, float* cosines, float* sines, int n) {
    for (int from = 0; from < n; from += kAtOnce) {
        const int count = std::min(kAtOnce, n - from);
        const auto inRange = anglesInRange(angles + from, count);
        Bounds cosine;
        Bounds sine;
        runInLanes<ToneBounds>(inRange.data(), &cosine, &sine);
        settle(cosine, angles + from, count, cosines + from,
               [](double angle) { return static_cast<float>(std::cos(angle)); });
        settle(sine, angles + from, count, sines + from,
               [](double angle) { return static_cast<float>(std::sin(angle)); });
    }
}

void narrowedHann(const double* angles, float* heights, int n) {
    for (int from = 0; from < n; from += kAtOnce) {
        const int count = std::min(kAtOnce, n - from);
        const auto inRange = anglesInRange(angles + from, count);
        Bounds height;
        runInLanes<HannBounds>(inRange.data(), &height);
        settle(height, angles + from, count, heights + from,
               [](double angle) { return static_cast<float>(0.5 - (0.5 * std::cos(angle))); });
    }
}

}  // namespace beatatlas
