// SPDX-License-Identifier: MIT
// Decimation by about ten: an eighth-order recursive low-pass at a twentieth of the input rate,
// then every step-th filtered sample.
//
// All eight poles lie close together near z = 1, so in single precision the filter is
// ill-conditioned: the order in which its sums are taken shows in the result, and so does every
// digit of the stored coefficients.
#include <algorithm>
#include <array>
#include <memory>

#include "beatatlas/utilities.h"

namespace {

constexpr std::size_t kCoefficients = 9;
using Coefficients = std::array<float, kCoefficients>;

constexpr Coefficients kDenominator = {
    1.0F,
    -6.390364646911621F,
    18.000337600708008F,
    -29.171098709106445F,
    29.731374740600586F,
    -19.505632400512695F,
    8.040995597839355F,
    -1.9036688804626465F,
    0.1981000155210495F,
};

// A gain times the binomials of order eight: all zeros at half the rate.
constexpr Coefficients kNumerator = {
    1.7625536941068276e-07F, 1.410042955285462e-06F,  4.935150627716212e-06F,
    9.870301255432423e-06F,  1.2337875887169503e-05F, 9.870301255432423e-06F,
    4.935150627716212e-06F,  1.410042955285462e-06F,  1.7625536941068276e-07F,
};

// The first seven filtered samples only begin to rise.
constexpr long kFirstTaken = 7;

/** Every step-th filtered sample from the eighth on, as far as there are any. */
void takeEvery(int step, const float* filtered, long count, float* out, long outCount) {
    long at = kFirstTaken;
    for (long i = 0; i < outCount && at >= 0 && at < count; ++i, at += step) out[i] = filtered[at];
}

}  // namespace

float* make_8(float* a, float* b) {
    std::copy(kDenominator.begin(), kDenominator.end(), a);
    std::copy(kNumerator.begin(), kNumerator.end(), b);
    return a;
}

void filter8_mono(float* in, float* out, long n, float* a, float* b) {
    // Copies, so that nothing written to out can be taken for a change of the coefficients. a[0] is
    // never read.
    Coefficients p{};
    Coefficients z{};
    std::copy_n(a + 1, kCoefficients - 1, p.begin() + 1);
    std::copy_n(b, kCoefficients, z.begin());
    float w1 = 0.0F;
    float w2 = 0.0F;
    float w3 = 0.0F;
    float w4 = 0.0F;
    float w5 = 0.0F;
    float w6 = 0.0F;
    float w7 = 0.0F;
    float w8 = 0.0F;
    for (long i = 0; i < n; ++i) {
        // clang-format off
        const float w0 = (((((((in[i] - (p[1] * w1)) - (p[2] * w2)) - (p[3] * w3)) - (p[4] * w4))
                              - (p[5] * w5)) - (p[6] * w6)) - (p[7] * w7)) - (p[8] * w8);
        out[i] = ((((((((z[0] * w0) + (z[1] * w1)) + (z[2] * w2)) + (z[3] * w3)) + (z[4] * w4))
                      + (z[5] * w5)) + (z[6] * w6)) + (z[7] * w7)) + (z[8] * w8);
        // clang-format on
        w8 = w7;
        w7 = w6;
        w6 = w5;
        w5 = w4;
        w4 = w3;
        w3 = w2;
        w2 = w1;
        w1 = w0;
    }
}

void resample2(float* out, long outCount, float* in, long inCount, float /*ratio*/, int step,
               long /*reserved*/) {
    if (out == nullptr || in == nullptr || outCount <= 0 || inCount <= kFirstTaken) return;
    const auto filtered = std::make_unique<float[]>(static_cast<std::size_t>(inCount));
    Coefficients a{};
    Coefficients b{};
    make_8(a.data(), b.data());
    filter8_mono(in, filtered.get(), inCount, a.data(), b.data());
    takeEvery(step, filtered.get(), inCount, out, outCount);
}
