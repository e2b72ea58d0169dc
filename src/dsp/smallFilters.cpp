// SPDX-License-Identifier: MIT
#include <cmath>

#include "beatatlas/dsp.h"
#include "dsp/constants.h"

namespace {

/** The corner of a second-order section, narrowed to single precision where the sections use it
 *  so. */
struct Corner {
    Corner(float fc, float q, float fs)
        : omega(static_cast<float>(((2.0 * beatatlas::kPi) * static_cast<double>(fc)) /
                                   static_cast<double>(fs))),
          cosine(std::cos(omega)), alpha(std::sin(omega) / (2.0F * q)), d(1.0F + alpha) {}

    float omega;  // radians per sample
    float cosine;
    float alpha;
    float d;
};

/** The feedback half, the same for low-pass and high-pass; its cosine alone is taken in double
 *  precision. */
void setFeedback(const Corner& corner, float* c) {
    const double cosine = std::cos(static_cast<double>(corner.omega));
    c[3] = static_cast<float>((-2.0 * cosine) / static_cast<double>(corner.d));
    c[4] = (1.0F - corner.alpha) / corner.d;
}

}  // namespace

void make_lpf0(float* b, float* a, float f) {
    *a = static_cast<float>(std::exp(-(2.0 * beatatlas::kPi) * static_cast<double>(f)));
    *b = 1.0F - *a;
}

void make_lpf1(float fc, float fs, float* a, float* b) {
    const double angle = (beatatlas::kPi * static_cast<double>(fc)) / static_cast<double>(fs);
    const float t = std::tan(static_cast<float>(angle));
    b[0] = t / (1.0F + t);
    b[1] = b[0];
    a[0] = 1.0F;
    a[1] = (t - 1.0F) / (1.0F + t);
}

void make_lpf2(float fc, float q, float fs, float* c) {
    const Corner corner(fc, q, fs);
    c[0] = (0.5F * (1.0F - corner.cosine)) / corner.d;
    c[1] = (1.0F - corner.cosine) / corner.d;
    c[2] = c[0];
    setFeedback(corner, c);
}

void make_hpf2(float fc, float q, float fs, float* c) {
    const Corner corner(fc, q, fs);
    c[0] = (0.5F * (1.0F + corner.cosine)) / corner.d;
    c[1] = -(1.0F + corner.cosine) / corner.d;
    c[2] = c[0];
    setFeedback(corner, c);
}

void filter1(float* in, float* out, long n, float b, float a) {
    float s = 0.0F;
    for (long k = 0; k < n; ++k) {
        const float x = in[k];
        const float y = (b * x) + s;
        // The zero of this section carries no weight, yet an infinite sample turns it into NaN: it
        // stays.
        s = (a * y) + (0.0F * x);
        out[k] = y;
    }
}

void filter1_hat_mono(float* in, float* out, int n, float* a, float* b) {
    const float feedback = a[1];
    const float b0 = b[0];
    const float b1 = b[1];
    float s = 0.0F;
    for (int k = 0; k < n; ++k) {
        const float w = in[k] - (feedback * s);
        out[k] = (b1 * s) + (b0 * w);
        s = w;
    }
}

void filter2_mono(float* in, float* out, long n, float* c) {
    const float b0 = c[0];
    const float b1 = c[1];
    const float b2 = c[2];
    const float a1 = c[3];
    const float a2 = c[4];
    float s1 = 0.0F;
    float s2 = 0.0F;
    for (long k = 0; k < n; ++k) {
        const float x = in[k];
        const float y = (b0 * x) + s1;
        s1 = ((b1 * x) - (a1 * y)) + s2;
        s2 = (b2 * x) - (a2 * y);
        out[k] = y;
    }
}

void butter(float*, float*, int, float, char) {}

void filter(float*, float*, float*, float*) {}

void find_v(float*, float*, float*, float*) {}
