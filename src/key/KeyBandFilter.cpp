// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <algorithm>
#include <cstddef>

#include "dsp/isConstant.h"
#include "dsp/sampleLanes.h"
#include "dsp/truncation.h"

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

/** Low-passes 6 0 2 4, then 7 1 3 5, then both high-passes: an odd section finds what it takes in its own lane, and
 *  what leaves the last low-pass lies in front. */
std::size_t KeyBandFilter::placeOf(int stage) {
    constexpr std::size_t kHalf = kLowPasses / 2;
    const auto s = static_cast<std::size_t>(stage);
    return stage < kLowPasses ? ((s % 2) * kHalf) + (((s / 2) + 1) % kHalf) : s;
}

namespace {

/** Equal sections in lanes, kVectors × kWidth of them. */
template <std::size_t kWidth, std::size_t kVectors>
struct SectionLanes {
    using Vector = Lanes<double, kWidth>;

    template <class Section>
    BEATATLAS_LANES void load(const Section& section, const double* s1From, const double* s2From,
                              const double* reached) {
        fillLanes(b0, section.b0);
        fillLanes(b1, section.b1);
        fillLanes(a1, section.a1);
        fillLanes(a2, section.a2);
        for (std::size_t v = 0; v < kVectors; ++v) {
            loadLanes(s1[v], s1From + (v * kWidth));
            loadLanes(s2[v], s2From + (v * kWidth));
            loadLanes(y[v], reached + (v * kWidth));
        }
    }

    BEATATLAS_LANES void store(double* s1To, double* s2To, double* reached) const {
        for (std::size_t v = 0; v < kVectors; ++v) {
            storeLanes(s1[v], s1To + (v * kWidth));
            storeLanes(s2[v], s2To + (v * kWidth));
            storeLanes(y[v], reached + (v * kWidth));
        }
    }

    BEATATLAS_LANES void run(const Vector& x, std::size_t v) {
        y[v] = s1[v] + (b0 * x);
        s1[v] = ((b1 * x) - (a1 * y[v])) + s2[v];
        s2[v] = (b0 * x) - (a2 * y[v]);
    }

    Vector b0, b1, a1, a2;
    Vector s1[kVectors], s2[kVectors], y[kVectors];
};

}  // namespace

// Stage s takes what stage s − 1 gave in the step before. Registers of four doubles at the most: they answer sooner
// than wider ones, and a section waits for its own last output. The conversions go in groups beside the steps, so that
// the processor makes them while it waits.
template <std::size_t kWidth>
struct KeyBandFilter::Wavefront {
    static constexpr std::size_t kLanes = std::min<std::size_t>(kWidth, 4);
    static constexpr std::size_t kHalf = kLowPasses / 2;
    static constexpr std::size_t kVectors = kHalf / kLanes;
    static constexpr int kGroup = 64;
    using LowPasses = SectionLanes<kLanes, kVectors>;
    using HighPasses = SectionLanes<kHighPasses, 1>;

    BEATATLAS_LANES static void run(KeyBandFilter* filter, double* reached,
                                    const std::int16_t* frames, std::int16_t* out, int n) {
        Wavefront lanes;
        lanes.load(*filter, reached);
        double signal[kGroup];
        for (int done = 0; done < n; done += kGroup) {
            const int count = std::min(n - done, kGroup);
            MonoOfBlock<kLanes>::run(frames + (2 * std::ptrdiff_t{done}), signal, count);
            for (int i = 0; i < count; ++i) signal[i] = lanes.step(signal[i]);
            LowHalvesOfBlock<kLanes>::run(signal, out + done, count);
        }
        lanes.store(*filter, reached);
    }

    BEATATLAS_LANES void load(const KeyBandFilter& filter, const double* reached) {
        const double* s1 = filter.s1_.data();
        const double* s2 = filter.s2_.data();
        even.load(filter.design_.lowPass, s1, s2, reached);
        odd.load(filter.design_.lowPass, s1 + kHalf, s2 + kHalf, reached + kHalf);
        high.load(filter.design_.highPass, s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
    }

    BEATATLAS_LANES void store(KeyBandFilter& filter, double* reached) const {
        double* s1 = filter.s1_.data();
        double* s2 = filter.s2_.data();
        even.store(s1, s2, reached);
        odd.store(s1 + kHalf, s2 + kHalf, reached + kHalf);
        high.store(s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
    }

    /** Takes one sample; the last section gives the sample of nine steps ago. */
    BEATATLAS_LANES double step(double x) {
        typename LowPasses::Vector newest;
        fillLanes(newest, x);
        typename LowPasses::Vector evenIn[kVectors];
        if constexpr (kVectors == 1) {
            evenIn[0] = __builtin_shufflevector(odd.y[0], newest, 3, 4, 1, 2);
        } else {
            evenIn[0] = __builtin_shufflevector(odd.y[1], newest, 1, 2);
            evenIn[1] = __builtin_shufflevector(odd.y[0], odd.y[1], 1, 2);
        }
        const typename HighPasses::Vector highIn{odd.y[0][0], high.y[0][0]};
        high.run(highIn, 0);
        for (std::size_t v = 0; v < kVectors; ++v) odd.run(even.y[v], v);
        for (std::size_t v = 0; v < kVectors; ++v) even.run(evenIn[v], v);
        return high.y[0][1];
    }

    LowPasses even;  // stages 6 0 2 4
    LowPasses odd;   // stages 7 1 3 5
    HighPasses high;
};

/** One step of the sections first … last, each of which takes what its predecessor reached a step ago; the first
 *  section of all takes x. */
void KeyBandFilter::stepStages(int first, int last, double x, PerStage& reached) {
    for (int stage = last; stage >= first; --stage)
        reached[placeOf(stage)] = runStage(stage, stage == 0 ? x : reached[placeOf(stage - 1)]);
}

// In silence the sections come to rest at numbers that are very slow to compute. A frame that leaves them all as they
// were stands for all frames like it.
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

// A wavefront: while the first section takes sample i, section s takes sample i − s, which the sections before it have
// left behind by then. No section waits for another within a step, so all ten go side by side; each still sees every
// sample in turn and computes what runStage() does. The first steps start the sections one by one and the last ones
// let them run out, so that every section has seen the whole block.
//
// The magnitudes of the cascade's impulse response sum up to 2.74: no output of 16-bit samples leaves 18 bits.
void KeyBandFilter::filterInLanes(const std::int16_t* frames, std::int16_t* out, int n) {
    constexpr int kLag = kStages - 1;
    if (n <= kLag) {
        for (std::ptrdiff_t i = 0; i < n; ++i)
            out[i] = truncToInt16(filter(monoOfFrame(frames + (2 * i))));
        return;
    }
    PerStage reached{};
    for (int i = 0; i < kLag; ++i) {
        stepStages(0, i, monoOfFrame(frames), reached);
        frames += 2;
    }
    const int full = n - kLag;
    runInLanes<Wavefront>(this, reached.data(), frames, out, full);
    for (int i = 1; i <= kLag; ++i) {
        stepStages(i, kLag, 0.0, reached);
        out[full + i - 1] = truncToInt16(reached[placeOf(kLag)]);
    }
}

}  // namespace beatatlas
