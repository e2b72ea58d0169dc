// SPDX-License-Identifier: MIT
#include "view/Dot.h"

#include <array>

namespace beatatlas {

namespace {

constexpr std::int32_t kSilentClass = 1;
constexpr std::int32_t kFaintClass = 2;

/** A sum above a threshold has the class beside it: about 2 dB from class to class. */
struct Threshold {
    std::int32_t above;
    std::int32_t levelClass;
};

constexpr std::array<Threshold, 13> kThresholds = {{
    {20674, 15},
    {16421, 14},
    {13044, 13},
    {10361, 12},
    {8229, 11},
    {6537, 10},
    {5192, 9},
    {4124, 8},
    {3275, 7},
    {2601, 6},
    {2066, 5},
    {1641, 4},
    {1303, 3},  // 1304 itself belongs to the class; all others begin one above their value
}};

std::int32_t classOf(std::int32_t lowSum) {
    for (const Threshold& threshold : kThresholds)
        if (lowSum > threshold.above) return threshold.levelClass;
    return kFaintClass;
}

}  // namespace

Dot makeDot(std::int32_t lowSum, std::int32_t midSum) {
    if (lowSum != 0) return {static_cast<float>(lowSum), classOf(lowSum)};
    if (midSum != 0) return {1.0F, classOf(lowSum)};
    return {0.0F, kSilentClass};
}

}  // namespace beatatlas
