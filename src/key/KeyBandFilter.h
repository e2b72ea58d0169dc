// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace beatatlas {

/** Keeps the range in which keys are heard: eight equal low-pass sections at 5512 Hz, then two
 *  equal high-pass sections at 110 Hz, both with a quality of 0.707. The low-pass makes room for
 *  taking every fourth sample.
 *
 *  Sections in transposed direct form II, double precision. The signal is carried from call to
 *  call. */
class KeyBandFilter {
public:
    /** There are coefficients for 44,100 and for 48,000; any other rate is filtered by the
     *  latter. */
    void create(int rate);

    /** Back to silence. */
    void reset();

    /** The plain form: one sample through one section after the other. */
    double filter(double x);

    /** The mean of both channels of each frame through filter(x), cut to 16 bits; with all sections
     *  at work at once. n ≤ 0 does nothing.
     *  @param frames  n interleaved stereo frames
     *  @param out     n samples; no part of frames */
    void filter(const std::int16_t* frames, std::int16_t* out, int n);

    /** @name filter() in steps, beside other work
     *  begin() takes kLag frames; each step of the Wavefront takes one and gives a sample; end()
     *  gives the last kLag samples. While it is under way there is no other call.
     *  @{ */
    static constexpr int kLag = 9;
    void begin(const std::int16_t* frames);
    void end(std::int16_t* out);
    bool isUnderWay() const { return underWay_; }

    /** All sections side by side in lanes; keyBandLanes.h. */
    template <std::size_t kWidth>
    struct Wavefront;
    /** @} */

private:
    struct Section {
        double b0 = 0.0;  // b2 is the same
        double b1 = 0.0;
        double a1 = 0.0;
        double a2 = 0.0;
    };
    struct Design {
        Section lowPass;
        Section highPass;
    };
    static const Design k44100;
    static const Design k48000;

    static constexpr int kLowPasses = 8;
    static constexpr int kHighPasses = 2;
    static constexpr int kStages = kLowPasses + kHighPasses;
    static_assert(kLag == kStages - 1);

    /** One value per section, each at its placeOf(). */
    using PerStage = std::array<double, kStages>;

    void filterInLanes(const std::int16_t* frames, std::int16_t* out, int n);
    static std::size_t placeOf(int stage);
    double runStage(int stage, double x);
    void stepStages(int first, int last, double x);

    Design design_;
    PerStage s1_{};
    PerStage s2_{};
    PerStage reached_{};  // what each section gave last, while under way
    bool underWay_ = false;
};

}  // namespace beatatlas
