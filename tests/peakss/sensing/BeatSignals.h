// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace beatatlas::test {

inline constexpr double kTwoPi = 6.283185307179586;

/** Adds a hit that dies away (to 1/e in decayMs) to a signal; what lies behind its end is cut
 *  off. */
inline void addHit(std::vector<float>& signal, int rate, double second, double hz, double decayMs,
                   double level) {
    const auto from = static_cast<std::size_t>(std::lround(second * rate));
    const double decay = decayMs * rate / 1000.0;
    for (std::size_t i = 0; from + i < signal.size() && static_cast<double>(i) < 8.0 * decay; ++i) {
        const auto t = static_cast<double>(i);
        signal[from + i] +=
            static_cast<float>(level * std::exp(-t / decay) * std::cos(kTwoPi * hz * t / rate));
    }
}

/** Hits at a constant tempo, the first after one beat. */
inline void addHits(std::vector<float>& signal, int rate, double bpm, double hz, double decayMs,
                    double level) {
    const double beat = 60.0 / bpm;
    const double length = static_cast<double>(signal.size()) / rate;
    for (int i = 1; i * beat < length; ++i) addHit(signal, rate, i * beat, hz, decayMs, level);
}

inline std::vector<float> silence(int rate, double seconds) {
    return std::vector<float>(static_cast<std::size_t>(std::lround(seconds * rate)), 0.0F);
}

/** White noise from a fixed generator. */
inline void addNoise(std::vector<float>& signal, float level) {
    std::uint32_t state = 1;
    for (float& sample : signal) {
        state = state * 1664525U + 1013904223U;
        sample += level * (static_cast<float>(state >> 8U) / 8388608.0F - 1.0F);
    }
}

/** A drum loop: bass drum on every beat, hi-hat on the eighths, a little noise. */
inline std::vector<float> drumLoop(int rate, double seconds, double bpm) {
    std::vector<float> signal = silence(rate, seconds);
    addHits(signal, rate, bpm, 60.0, 40.0, 0.7);
    addHits(signal, rate, 2.0 * bpm, 9000.0, 8.0, 0.2);
    addNoise(signal, 0.002F);
    return signal;
}

}  // namespace beatatlas::test
