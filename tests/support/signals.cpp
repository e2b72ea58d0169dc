// SPDX-License-Identifier: MIT
#include "support/signals.h"

#include <algorithm>

#include "support/NearestScope.h"
#include "support/oscillator.h"

namespace beatatlas::test {

namespace {

/** peak × shapeAt(frame) for every frame, rounded to nearest. */
template <typename ShapeAt>
std::vector<float> shaped(std::size_t frames, double peak, ShapeAt shapeAt) {
    const NearestScope nearest;
    std::vector<float> signal(frames);
    for (std::size_t i = 0; i < frames; ++i) signal[i] = static_cast<float>(peak * shapeAt(i));
    return signal;
}

/** The phase step of `hz`, rounded to nearest. */
Phase stepOf(double hz, int sampleRate) {
    const NearestScope nearest;
    return phaseIncrement(hz, sampleRate);
}

}  // namespace

std::vector<float> silence(std::size_t frames) {
    return std::vector<float>(frames);
}

std::vector<float> impulse(std::size_t frames, std::size_t at, double peak) {
    return shaped(frames, peak, [&](std::size_t i) { return i == at ? 1.0 : 0.0; });
}

std::vector<float> clickTrain(std::size_t frames, std::size_t first, double periodFrames,
                              double peak) {
    const NearestScope nearest;
    std::vector<float> signal(frames);
    std::size_t place = first;
    for (int click = 1; place < frames; ++click) {
        signal[place] = static_cast<float>(peak);
        place = first + static_cast<std::size_t>((click * periodFrames) + 0.5);
    }
    return signal;
}

std::vector<float> sine(std::size_t frames, double hz, int sampleRate, double peak) {
    const Phase step = stepOf(hz, sampleRate);
    return shaped(frames, peak, [&](std::size_t i) { return sineOf(step * i); });
}

std::vector<float> square(std::size_t frames, double hz, int sampleRate, double peak) {
    const Phase step = stepOf(hz, sampleRate);
    return shaped(frames, peak,
                  [&](std::size_t i) { return ((step * i) >> 63) == 0 ? 1.0 : -1.0; });
}

std::vector<float> whiteNoise(std::size_t frames, double peak, std::uint64_t seed) {
    return shaped(frames, peak,
                  [&](std::size_t i) { return noiseAt(seed, static_cast<std::int64_t>(i)); });
}

std::vector<float> sweep(std::size_t frames, double fromHz, double toHz, int sampleRate,
                         double peak) {
    // The average frequency up to frame i lies halfway between the first and the current one.
    return shaped(frames, peak, [&](std::size_t i) {
        const double part = static_cast<double>(i) / static_cast<double>(frames);
        const double averageHz = fromHz + (((toHz - fromHz) * part) * 0.5);
        return sineOf(phaseOfTurns((averageHz * static_cast<double>(i)) / sampleRate));
    });
}

void mixInto(std::vector<float>& sum, const std::vector<float>& part, std::size_t at) {
    const NearestScope nearest;
    for (std::size_t i = 0; i < part.size() && at + i < sum.size(); ++i) sum[at + i] += part[i];
}

}  // namespace beatatlas::test
