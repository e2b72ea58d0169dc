// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace beatatlas {

/** Keeps the range in which keys are heard: eight equal low-pass sections at 5512 Hz, then two equal high-pass
 *  sections at 110 Hz, both with a quality of 0.707. The low-pass makes room for taking every fourth sample.
 *
 *  Sections in transposed direct form II, double precision. The signal is carried from call to call. */
class KeyBandFilter {
public:
    /** There are coefficients for 44,100 and for 48,000; any other rate is filtered by the latter. */
    void create(int rate);

    /** Back to silence. */
    void reset();

    double filter(double x);

private:
    struct Section {
        double b0 = 0.0;  // b2 is the same
        double b1 = 0.0;
        double a1 = 0.0;
        double a2 = 0.0;
    };
    struct State {
        double s1 = 0.0;
        double s2 = 0.0;
    };
    struct Design {
        Section lowPass;
        Section highPass;
    };
    static const Design k44100;
    static const Design k48000;

    static constexpr std::size_t kLowPasses = 8;
    static constexpr std::size_t kHighPasses = 2;

    static double run(const Section& section, State& state, double x);

    Design design_;
    std::array<State, kLowPasses> lowPasses_;
    std::array<State, kHighPasses> highPasses_;
};

inline double KeyBandFilter::run(const Section& section, State& state, double x) {
    const double y = state.s1 + (section.b0 * x);
    state.s1 = ((section.b1 * x) - (section.a1 * y)) + state.s2;
    state.s2 = (section.b0 * x) - (section.a2 * y);
    return y;
}

inline double KeyBandFilter::filter(double x) {
    for (State& state : lowPasses_) x = run(design_.lowPass, state, x);
    for (State& state : highPasses_) x = run(design_.highPass, state, x);
    return x;
}

}  // namespace beatatlas
