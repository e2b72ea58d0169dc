// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <algorithm>
#include <cstddef>

#include "dsp/isConstant.h"
#include "dsp/lanes/sampleLanes.h"
#include "dsp/truncation.h"
#include "key/keyBandLanes.h"

namespace beatatlas {

const KeyBandFilter::Design KeyBandFilter::k44100 = {
    {0.09762616, 0.19525232, -0.94276158, 0.33326621},
    {0.98897751950022, -1.97795503900044, -1.97783357652409, 0.97807650147679}};

const KeyBandFilter::Design KeyBandFilter::k48000 = {
    {0.08493054820474352, 0.16986109640948704, -1.02354633811534, 0.36326853093431405},
    {0.9898700538456696, -1.9797401076913392, -1.979637499890312, 0.9798427154923666}};

void KeyBandFilter::create(int rate) {
    design_ = rate == 44100 ? k44100 : k48000;
    reset();
}

void KeyBandFilter::reset() {
    s1_ = {};
    s2_ = {};
    underWay_ = false;
}

double KeyBandFilter::runStage(int stage, double x) {
    const Section& section = stage < kLowPasses ? design_.lowPass : design_.highPass;
    double& s1 = s1_[placeOf(stage)];
    double& s2 = s2_[placeOf(stage)];
    const double y = s1 + (section.b0 * x);
    s1 = ((section.b1 * x) - (section.a1 * y)) + s2;
    s2 = (section.b0 * x) - (section.a2 * y);
    return y;
}

double KeyBandFilter::filter(double x) {
    for (int stage = 0; stage < kStages; ++stage) x = runStage(stage, x);
    return x;
}

/** Low-passes 6 0 2 4, then 7 1 3 5, then both high-passes: an odd section finds what it takes in
 *  its own lane, and what leaves the last low-pass lies in front. */
std::size_t KeyBandFilter::placeOf(int stage) {
    constexpr std::size_t kHalf = kLowPasses / 2;
    const auto s = static_cast<std::size_t>(stage);
    return stage < kLowPasses ? ((s % 2) * kHalf) + (((s / 2) + 1) % kHalf) : s;
}

namespace {

/** The conversions go in groups beside the steps, so that the processor makes them while it
 *  waits. */
template <std::size_t kWidth>
struct FilterFrames {
    static constexpr std::size_t kLanes = std::min<std::size_t>(kWidth, 4);
    static constexpr int kGroup = 64;

    BEATATLAS_LANES static void run(KeyBandFilter* filter, const std::int16_t* frames,
                                    std::int16_t* out, int n) {
        KeyBandFilter::Wavefront<kWidth> sections;
        sections.load(*filter);
        double signal[kGroup];
        for (int done = 0; done < n; done += kGroup) {
            const int count = std::min(n - done, kGroup);
            MonoOfBlock<kLanes>::run(frames + (2 * std::ptrdiff_t{done}), signal, count);
            for (int i = 0; i < count; ++i) signal[i] = sections.step(signal[i]);
            LowHalvesOfBlock<kLanes>::run(signal, out + done, count);
        }
        sections.store(*filter);
    }
};

}  // namespace

/** One step of the sections first … last, each of which takes what its predecessor reached a step
 *  ago; the first section of all takes x. */
void KeyBandFilter::stepStages(int first, int last, double x) {
    for (int stage = last; stage >= first; --stage)
        reached_[placeOf(stage)] = runStage(stage, stage == 0 ? x : reached_[placeOf(stage - 1)]);
}

// In silence the sections come to rest at numbers that are very slow to compute. A frame that
// leaves them all as they were stands for all frames like it.
void KeyBandFilter::filter(const std::int16_t* frames, std::int16_t* out, int n) {
    if (n < 2 || !isConstant(frames, 2 * n)) return filterInLanes(frames, out, n);
    const PerStage s1 = s1_;
    const PerStage s2 = s2_;
    out[0] = truncToInt16(filter(monoOfFrame(frames)));
    if (std::equal(s1.begin(), s1.end(), s1_.begin(), sameBits<double>) &&
        std::equal(s2.begin(), s2.end(), s2_.begin(), sameBits<double>)) {
        std::fill_n(out + 1, n - 1, out[0]);
    } else {
        filterInLanes(frames + 2, out + 1, n - 1);
    }
}

// A wavefront: while the first section takes sample i, section s takes sample i − s, which the
// sections before it have left behind by then. No section waits for another within a step, so all
// ten go side by side; each still sees every sample in turn and computes what runStage() does.
// begin() starts the sections one by one and end() lets them run out, so that every section has
// seen the whole block.
//
// The magnitudes of the cascade's impulse response sum up to 2.74: no output of 16-bit samples
// leaves 18 bits.
void KeyBandFilter::filterInLanes(const std::int16_t* frames, std::int16_t* out, int n) {
    if (n <= kLag) {
        for (std::ptrdiff_t i = 0; i < n; ++i)
            out[i] = truncToInt16(filter(monoOfFrame(frames + (2 * i))));
        return;
    }
    begin(frames);
    runInLanes<FilterFrames>(this, frames + (2 * std::ptrdiff_t{kLag}), out, n - kLag);
    end(out + (n - kLag));
}

void KeyBandFilter::begin(const std::int16_t* frames) {
    underWay_ = true;
    for (int i = 0; i < kLag; ++i) stepStages(0, i, monoOfFrame(frames + (2 * std::ptrdiff_t{i})));
}

void KeyBandFilter::end(std::int16_t* out) {
    for (int i = 1; i <= kLag; ++i) {
        stepStages(i, kLag, 0.0);
        out[i - 1] = truncToInt16(reached_[placeOf(kLag)]);
    }
    underWay_ = false;
}

}  // namespace beatatlas
