// SPDX-License-Identifier: MIT
#include "bench/Improvisation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "support/NearestScope.h"
#include "support/Wavetable.h"
#include "support/oscillator.h"

namespace beatatlas::bench {

namespace {

constexpr double kFullScale = 32767.0;
constexpr double kNoteLevel = 0.3 * kFullScale;
constexpr double kStrikeLevel = 0.3 * kFullScale;
constexpr double kNoteChance = 0.5;  // of a note on a semiquaver
constexpr double kStrikeChance = 0.4;
constexpr double kLoosenessMs = 20.0;  // the most a player is early or late
constexpr double kLongestSeconds = 1.0;
constexpr std::array<int, 15> kTwoOctaves = {0, 2, 3, 5, 7, 8, 10, 12, 14, 15, 17, 19, 20, 22, 24};

/** Pseudorandom numbers, the same in every run. */
class Dice {
public:
    /** 0 … 1 */
    double part() { return (test::noiseAt(7, rolls_++) + 1.0) / 2.0; }
    double around(double most) { return ((2.0 * part()) - 1.0) * most; }
    int below(int end) { return std::min(static_cast<int>(part() * end), end - 1); }

private:
    std::int64_t rolls_ = 0;
};

class Player {
public:
    Player(test::StereoTrack& track, const Improvisation& plan) : track_(track), plan_(plan) {}

    void play() {
        const double semiquaver = plan_.sampleRate * 15.0 / plan_.bpm;
        const auto end = static_cast<double>(track_.left.size());
        for (double at = plan_.firstFrame; at < end; at += semiquaver) {
            if (dice_.part() < kNoteChance) addNote(loosely(at));
            if (dice_.part() < kStrikeChance) addStrike(loosely(at));
        }
        std::for_each(track_.left.begin(), track_.left.end(), cut);
        std::for_each(track_.right.begin(), track_.right.end(), cut);
    }

private:
    // As in a 16-bit file.
    static void cut(float& sample) { sample = std::trunc(std::clamp(sample, -32767.0F, 32767.0F)); }

    std::int64_t loosely(double frame) {
        const double offset = dice_.around(kLoosenessMs) * plan_.sampleRate / 1000.0;
        return std::max<std::int64_t>(static_cast<std::int64_t>(frame + offset), 0);
    }

    /** Adds sample(frames since the onset) × decay from frame `at` on. */
    template <typename Sample>
    void add(std::int64_t at, double level, double decaySeconds, double pan, Sample sample) {
        const double fall = std::exp(-1.0 / (decaySeconds * plan_.sampleRate));
        const auto length = static_cast<std::int64_t>(kLongestSeconds * plan_.sampleRate);
        const auto end = static_cast<std::int64_t>(track_.left.size());
        for (std::int64_t i = 0; i < length && at + i < end; ++i) {
            const double x = level * sample(i);
            const auto frame = static_cast<std::size_t>(at + i);
            track_.left[frame] += static_cast<float>(x * (1.0 - pan));
            track_.right[frame] += static_cast<float>(x * pan);
            level *= fall;
        }
    }

    void addNote(std::int64_t at) {
        const int semitones = kTwoOctaves[static_cast<std::size_t>(dice_.below(15))] + plan_.tonic;
        const double hz = 110.0 * std::pow(2.0, (semitones / 12.0) + dice_.below(2));
        const test::Phase step = test::phaseIncrement(hz, plan_.sampleRate);
        const double level = kNoteLevel * (0.4 + (0.6 * dice_.part()));
        const double decay = 0.05 + (0.4 * dice_.part());
        add(at, level, decay, dice_.part(), [&](std::int64_t i) {
            const double attack = std::min(1.0, static_cast<double>(i) / 200.0);
            return attack * pluck_.at(step * static_cast<test::Phase>(i));
        });
    }

    /** Noise through a one-pole low-pass: from a thud to a shaker. */
    void addStrike(std::int64_t at) {
        const double brightness = 0.02 + (0.9 * dice_.part());
        const double level = kStrikeLevel * (0.3 + (0.7 * dice_.part()));
        const double decay = 0.02 + (0.1 * dice_.part());
        double low = 0.0;
        add(at, level, decay, 0.5, [&](std::int64_t i) {
            low += brightness * (test::noiseAt(11, at + i) - low);
            return low;
        });
    }

    test::StereoTrack& track_;
    const Improvisation& plan_;
    const test::Wavetable pluck_{1.0, 0.4, 0.25, 0.15, 0.1};
    Dice dice_;
};

}  // namespace

void improviseOver(test::StereoTrack& track, const Improvisation& plan) {
    const test::NearestScope nearest;
    Player(track, plan).play();
}

}  // namespace beatatlas::bench
