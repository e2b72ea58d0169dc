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
    const double alpha = corner.alphaOfQ(q);
    const double n = 1.0 + alpha;
    b0_ = (0.5 * (corner.c + 1.0)) / n;
    b1_ = -(corner.c + 1.0) / n;
    b2_ = b0_;
    setFeedback(corner, alpha);
}

void IirFilter::createLowPathFilter(float freq, float sampleRate, float q) {
    const Corner corner(freq, sampleRate);
    const double alpha = corner.alphaOfQ(q);
    const double n = 1.0 + alpha;
    b0_ = (0.5 * (1.0 - corner.c)) / n;
    b1_ = (1.0 - corner.c) / n;
    b2_ = b0_;
    setFeedback(corner, alpha);
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
    b0_ = alpha / n;
    b1_ = 0.0 / n;
    b2_ = -alpha / n;
    setFeedback(corner, alpha);
}

void IirFilter::setFeedback(const Corner& corner, double alpha) {
    const double n = 1.0 + alpha;
    a0_ = 1.0;
    a1_ = (-2.0 * corner.c) / n;
    a2_ = (1.0 - alpha) / n;
}

void IirFilter::operate(const double* in, double* out, int len) {
    const double b0 = b0_;
    const double b1 = b1_;
    const double b2 = b2_;
    const double a1 = a1_;
    const double a2 = a2_;
    double x1 = x1_;
    double x2 = x2_;
    double y1 = y1_;
    double y2 = y2_;
    for (int i = 0; i < len; ++i) {
        const double x = in[i];
        const double y = ((((b0 * x) + (b1 * x1)) + (b2 * x2)) - (a1 * y1)) - (a2 * y2);
        out[i] = y;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }
    x1_ = x1;
    x2_ = x2;
    y1_ = y1;
    y2_ = y2;
}

}  // namespace beatatlas
