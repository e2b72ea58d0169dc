// SPDX-License-Identifier: MIT
#include "dsp/IirFilter.h"

#include <cmath>

#include "dsp/constants.h"

namespace beatatlas {

namespace {

constexpr double kHalfLn2 = 0.34657359027997264;

}  // namespace

/** The corner or centre frequency as an angle per sample, with its sine and cosine. */
struct IirFilter::Corner {
    Corner(float freq, float sampleRate)
        : w0(static_cast<double>(freq) * kShortTwoPi / static_cast<double>(sampleRate)),
          s(std::sin(w0)), c(std::cos(w0)) {}

    double alphaOfQ(float q) const {
        const auto wide = static_cast<double>(q);
        return s / (wide + wide);
    }

    double alphaOfBandwidth(float octaves) const {
        return s * std::sinh(((kHalfLn2 * static_cast<double>(octaves)) * w0) / s);
    }

    double w0;
    double s;
    double c;
};

void IirFilter::createHiPathFilter(float freq, float sampleRate, float q) {
    const Corner corner(freq, sampleRate);
    section_.designHighPass(corner.c, corner.alphaOfQ(q));
}

void IirFilter::createLowPathFilter(float freq, float sampleRate, float q) {
    const Corner corner(freq, sampleRate);
    section_.designLowPass(corner.c, corner.alphaOfQ(q));
}

void IirFilter::createBandPathFilterW(float freq, float sampleRate, float bandwidth) {
    const Corner corner(freq, sampleRate);
    setBandPass(corner, corner.alphaOfBandwidth(bandwidth));
}

void IirFilter::createBandPathFilterQ(float freq, float sampleRate, float q) {
    const Corner corner(freq, sampleRate);
    setBandPass(corner, corner.alphaOfQ(q));
}

void IirFilter::setBandPass(const Corner& corner, double alpha) {
    const double n = 1.0 + alpha;
    section_.b0 = alpha / n;
    section_.b1 = 0.0 / n;
    section_.b2 = -alpha / n;
    section_.designFeedback(corner.c, alpha);
}

}  // namespace beatatlas
