// SPDX-License-Identifier: MIT
// The stand-alone utilities and the free signal routines, with any arguments that their headers
// allow, on arrays of exactly the stated lengths.
#include <algorithm>
#include <climits>
#include <cmath>
#include <numeric>
#include <vector>

#include "FuzzAudio.h"
#include "FuzzersRoundingMode.h"
#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "require.h"

namespace {

using namespace beatatlas::fuzz;

constexpr int kMostSamples = 12000;
constexpr int kMostSamplesOfAnyHop = 2500;  // a hop of one sample gives one frame per sample
constexpr int kMostSorted = 2000;
constexpr int kMostBubbled = 200;
constexpr int kMostTransformed = 8192;
constexpr int kMostOperations = 6;

// A usual or arbitrary hop divisor, and the most samples to use with it.
struct HopDivisor {
    int value;
    int mostSamples;
};

HopDivisor fuzzHopDivisor(FuzzInput& input) {
    if (input.flag()) return {input.between(-1, 4), kMostSamples};
    return {fuzzInt(input), kMostSamplesOfAnyHop};
}

std::vector<int> fuzzInts(FuzzInput& input, int count) {
    std::vector<int> values(static_cast<std::size_t>(count));
    std::uint32_t state = input.bits32();
    const std::uint32_t mask = input.flag() ? 0xFFFFFFFFU : 7U;
    for (int& value : values) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<int>((state >> 4) & mask);
    }
    return values;
}

std::vector<int> indices(int count) {
    std::vector<int> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), 0);
    return values;
}

void resampling(FuzzInput& input) {
    const int inCount = input.between(0, kMostSamples);
    std::vector<float> in = fuzzSamples(input, inCount);
    std::vector<float> out(input.bits16() % 5000U);
    const long outCount = input.flag() ? static_cast<long>(out.size()) : input.between(-2, 0);
    const int step = input.flag() ? 10 : fuzzInt(input);
    const bool inPlace = input.flag() && outCount <= inCount;
    resample2(inPlace ? in.data() : out.data(), outCount, in.data(),
              input.flag() ? inCount : -inCount, fuzzFloat(input), step, fuzzInt(input));
}

void eighthOrder(FuzzInput& input) {
    std::vector<float> a(9);
    std::vector<float> b(9);
    require(make_8(a.data(), b.data()) == a.data(), "the coefficients that were made");
    if (input.flag()) {
        for (float& value : a) value = fuzzFloat(input);
        for (float& value : b) value = fuzzFloat(input);
    }
    std::vector<float> samples = fuzzSamples(input, input.between(0, 3000));
    std::vector<float> out(samples.size());
    filter8_mono(samples.data(), input.flag() ? samples.data() : out.data(),
                 static_cast<long>(samples.size()), a.data(), b.data());
}

void cutting(FuzzInput& input) {
    const int count = input.between(0, kMostSamples);
    std::vector<float> in = fuzzSamples(input, count);
    std::vector<float> out(in.size());
    const int div = input.flag() ? 1 << input.between(0, 12) : fuzzInt(input);
    const float rate = fuzzFloat(input);
    CutBeats(input.flag() ? in.data() : out.data(), in.data(), count, rate, div,
             input.flag() ? input.between(-1, 5) : fuzzInt(input));
}

void pitch(FuzzInput& input) {
    const HopDivisor divisor = fuzzHopDivisor(input);
    const int count = input.between(0, divisor.mostSamples);
    std::vector<float> samples = fuzzSamples(input, count);
    const float rate = input.flag() ? 4410.0F : fuzzFloat(input);
    const int hertz = PitchDetect(samples.data(), count, rate, divisor.value, input.between(-1, 5));
    require(hertz >= 434 && hertz <= 446, "a concert pitch");
}

void keyOfBuffer(FuzzInput& input) {
    const HopDivisor divisor = fuzzHopDivisor(input);
    const int count = input.between(0, divisor.mostSamples);
    std::vector<float> samples = fuzzSamples(input, count);
    const float rate = input.flag() ? 4000.0F : fuzzFloat(input);
    const float reference = input.flag() ? 440.0F : fuzzFloat(input);
    const long stated = input.between(0, 15) == 0 ? std::min(fuzzInt(input), 0) : count;
    S_KEY_SCALE_RESULT result{7};
    const int key = KeyCodeScale(&result, samples.data(), stated, rate, reference, divisor.value,
                                 input.flag() ? input.between(-1, 5) : fuzzInt(input), nullptr);
    require(key >= 0 && key <= 23 && result.reserved == 7, "one of 24 keys, nothing else");
}

void statistics(FuzzInput& input) {
    const int count = input.between(1, 3000);
    std::vector<float> v = fuzzSamples(input, count);
    std::vector<double> wide(v.begin(), v.end());
    const int stated = input.flag() ? count : input.between(-3, 1);
    int at = -1;
    max_v(v.data(), stated, &at);
    require(at >= 0 && at < count, "the index of the largest lies within the array");
    max_v(wide.data(), stated, &at);
    require(at >= 0 && at < count, "the index of the largest lies within the array");
    max_v(v.data(), stated, nullptr);
    min_v(v.data(), stated);
    ave_v(v.data(), stated);
    mode_v(v.data(), stated);
}

void sorting(FuzzInput& input) {
    const int count = input.between(1, kMostSorted);
    std::vector<float> v = fuzzSamples(input, count);
    std::vector<int> idx = indices(count);
    std::vector<int> ints = fuzzInts(input, count);
    const int lo = input.flag() ? 0 : input.between(0, count - 1);
    const int hi = input.flag() ? count - 1 : input.between(0, count - 1);
    switch (input.between(0, 3)) {
    case 0:
        QSort(v.data(), idx.data(), lo, hi);
        break;
    case 1:
        QSort3(v.data(), idx.data(), lo, hi);
        break;
    case 2:
        QSort2(ints.data(), lo, hi);
        if (lo < hi)
            require(std::is_sorted(ints.begin() + lo, ints.begin() + hi + 1, std::greater<>()),
                    "a descending order");
        return;
    default:
        QSort2_Ascend(ints.data(), lo, hi);
        if (lo < hi)
            require(std::is_sorted(ints.begin() + lo, ints.begin() + hi + 1), "an ascending order");
        return;
    }
    std::sort(idx.begin(), idx.end());
    require(idx == indices(count), "every index once");
}

void bubbling(FuzzInput& input) {
    const int count = input.between(1, kMostBubbled);
    std::vector<float> v = fuzzSamples(input, count);
    std::vector<int> ints = fuzzInts(input, count);
    std::vector<int> idx = indices(count);
    BubSort(v.data(), idx.data(), count);
    BubSort(ints.data(), idx.data(), count);
    require(std::is_sorted(ints.begin(), ints.end(), std::greater<>()), "a descending order");
    BubSort(ints.data(), idx.data(), input.between(-2, 0));
}

void smallFilters(FuzzInput& input) {
    std::vector<float> c(5);
    std::vector<float> in = fuzzSamples(input, input.between(0, 3000));
    std::vector<float> room(in.size());
    float* out = input.flag() ? in.data() : room.data();
    const int stated = input.flag() ? static_cast<int>(in.size()) : input.between(-3, 0);
    const float fc = fuzzFloat(input);
    const float fs = fuzzFloat(input);
    make_lpf0(&c[0], &c[1], fc);
    filter1(in.data(), out, stated, c[0], c[1]);
    make_lpf1(fc, fs, &c[0], &c[2]);
    filter1_hat_mono(in.data(), out, stated, &c[0], &c[2]);
    const auto make = input.flag() ? make_lpf2 : make_hpf2;
    make(fc, fuzzFloat(input), fs, c.data());
    filter2_mono(in.data(), out, stated, c.data());
}

void tables(FuzzInput& input) {
    const int n = input.between(-3, 3000);
    const auto room = static_cast<std::size_t>(std::max(n, 0));
    std::vector<float> window(room);
    std::vector<float> sines(room + room / 4);
    std::vector<int> bits(room);
    hanning(n, window.data());
    make_sintbl(n, sines.data());
    require(make_bitrev(n, bits.data()) == 0, "0");
}

void transforming(FuzzInput& input) {
    const int any = input.between(0, kMostTransformed);
    const int points = input.flag() ? 1 << input.between(0, 13) : any;
    std::vector<float> re = fuzzSamples(input, points);
    std::vector<float> im = fuzzSamples(input, points);
    std::vector<float> out(re.size());
    require(fft_less_normalize(input.flag() ? points : -points, re.data(), im.data()) == 0,
            "memory for the tables");
    calc_mag(points, out.data(), re.data(), im.data());
    calc_phase(points, out.data(), re.data(), im.data());
}

using Operation = void (*)(FuzzInput&);
constexpr Operation kOperations[] = {resampling,   eighthOrder, cutting,      pitch,
                                     keyOfBuffer,  statistics,  sorting,      bubbling,
                                     smallFilters, tables,      transforming, keyOfBuffer};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    constexpr int kModes[] = {FE_TONEAREST, FE_TOWARDZERO};
    std::fesetround(input.oneOf(kModes));
    for (int i = 0; i < kMostOperations && !input.isEmpty(); ++i) input.oneOf(kOperations)(input);
    return 0;
}
