// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <algorithm>
#include <cstddef>

#include "dsp/isConstant.h"
#include "dsp/vectorLanes.h"

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
    double& s1 = s1_[static_cast<std::size_t>(stage)];
    double& s2 = s2_[static_cast<std::size_t>(stage)];
    const double y = s1 + (section.b0 * x);
    s1 = ((section.b1 * x) - (section.a1 * y)) + s2;
    s2 = (section.b0 * x) - (section.a2 * y);
    return y;
}

double KeyBandFilter::filter(double x) {
    for (int stage = 0; stage < kStages; ++stage) x = runStage(stage, x);
    return x;
}

namespace {

/** Equal sections in lanes, kVectors × kWidth of them. Stage s takes what stage s − 1 gave in the step before. */
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

    BEATATLAS_LANES double last() const { return y[kVectors - 1][kWidth - 1]; }

    /** Takes one sample, the last lane of newest. */
    BEATATLAS_LANES void step(const Vector& newest) {
        for (std::size_t v = kVectors - 1; v > 0; --v) {
            Vector x;
            shiftIn(x, y[v - 1], y[v]);
            run(x, v);
        }
        Vector x;
        shiftIn(x, newest, y[0]);
        run(x, 0);
    }

    /** x = the last lane of before, then all lanes of current but the last. */
    BEATATLAS_LANES static void shiftIn(Vector& x, const Vector& before, const Vector& current) {
        if constexpr (kWidth == 2)
            x = __builtin_shufflevector(before, current, 1, 2);
        else if constexpr (kWidth == 4)
            x = __builtin_shufflevector(before, current, 3, 4, 5, 6);
        else
            x = __builtin_shufflevector(before, current, 7, 8, 9, 10, 11, 12, 13, 14);
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

template <std::size_t kWidth>
struct KeyBandFilter::Wavefront {
    /** Reads the samples before in as well, as far as lanes go. */
    BEATATLAS_LANES static void run(KeyBandFilter* filter, double* reached, const double* in,
                                    double* out, int n) {
        SectionLanes<kWidth, kLowPasses / kWidth> low;
        SectionLanes<2, kHighPasses / 2> high;
        double* s1 = filter->s1_.data();
        double* s2 = filter->s2_.data();
        low.load(filter->design_.lowPass, s1, s2, reached);
        high.load(filter->design_.highPass, s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
        typename decltype(high)::Vector filtered;
        typename decltype(low)::Vector newest;
        for (int i = 0; i < n; ++i) {
            fillLanes(filtered, low.last());
            high.step(filtered);
            loadLanes(newest, in + (i + 1 - static_cast<int>(kWidth)));
            low.step(newest);
            out[i] = high.last();
        }
        low.store(s1, s2, reached);
        high.store(s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
    }
};

/** One step of the sections first … last, each of which takes what its predecessor reached a step ago; the first
 *  section of all takes x. */
void KeyBandFilter::stepStages(int first, int last, double x, PerStage& reached) {
    for (int stage = last; stage >= first; --stage) {
        const auto s = static_cast<std::size_t>(stage);
        reached[s] = runStage(stage, stage == 0 ? x : reached[s - 1]);
    }
}

// In silence the sections come to rest at numbers that are very slow to compute. A sample that leaves them all as they
// were stands for all samples like it.
void KeyBandFilter::filter(const double* in, double* out, int n) {
    if (n < 2 || !isConstant(in, n)) return filterInLanes(in, out, n);
    const PerStage s1 = s1_;
    const PerStage s2 = s2_;
    out[0] = filter(in[0]);
    if (std::equal(s1.begin(), s1.end(), s1_.begin(), sameBits<double>) &&
        std::equal(s2.begin(), s2.end(), s2_.begin(), sameBits<double>)) {
        std::fill_n(out + 1, n - 1, out[0]);
    } else {
        filterInLanes(in + 1, out + 1, n - 1);
    }
}

// A wavefront: while the first section takes sample i, section s takes sample i − s, which the sections before it have
// left behind by then. No section waits for another within a step, so all ten go side by side; each still sees every
// sample in turn and computes what runStage() does. The first steps start the sections one by one and the last ones
// let them run out, so that every section has seen the whole block.
void KeyBandFilter::filterInLanes(const double* in, double* out, int n) {
    constexpr int kLag = kStages - 1;
    if (n <= kLag) {
        for (int i = 0; i < n; ++i) out[i] = filter(in[i]);
        return;
    }
    PerStage reached{};
    for (int i = 0; i < kLag; ++i) stepStages(0, i, in[i], reached);
    runInLanes<Wavefront>(this, reached.data(), in + kLag, out, n - kLag);
    for (int i = 1; i <= kLag; ++i) {
        stepStages(i, kLag, 0.0, reached);
        out[n - kLag + i - 1] = reached[kLag];
    }
}

}  // namespace beatatlas
