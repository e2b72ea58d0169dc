// SPDX-License-Identifier: MIT
#include "support/DrumKit.h"

namespace beatatlas::test {

namespace {

constexpr std::int64_t kKickMs = 280;
constexpr std::int64_t kSnareMs = 180;
constexpr std::int64_t kHatMs = 45;
constexpr double kKickSweepSeconds = 0.08;
constexpr double kKickStartHz = 150.0;
constexpr double kKickEndHz = 60.0;
constexpr double kSnareToneHz = 190.0;

double cubed(double x) {
    return (x * x) * x;
}

/** The remaining share of a hit: 1 at the onset, 0 at its end. */
double remaining(std::int64_t sinceOnset, std::int64_t length) {
    return static_cast<double>(length - sinceOnset) / static_cast<double>(length);
}

/** Cycles since the onset of a tone whose frequency falls with the fourth power of the time left in
 *  the sweep. */
double kickTurns(double seconds) {
    const double left = seconds < kKickSweepSeconds ? 1.0 - (seconds / kKickSweepSeconds) : 0.0;
    const double fifthPower = ((left * left) * (left * left)) * left;
    const double sweepTurns =
        (((kKickStartHz - kKickEndHz) * kKickSweepSeconds) * (1.0 - fifthPower)) / 5.0;
    return (kKickEndHz * seconds) + sweepTurns;
}

}  // namespace

DrumKit::DrumKit(int sampleRate, std::uint64_t seed)
    : secondsPerFrame_(1.0 / sampleRate), seed_(seed), kickFrames_((sampleRate * kKickMs) / 1000),
      snareFrames_((sampleRate * kSnareMs) / 1000), hatFrames_((sampleRate * kHatMs) / 1000),
      sine_({1.0}) {}

double DrumKit::kick(std::int64_t sinceOnset) const {
    const double seconds = static_cast<double>(sinceOnset + 1) * secondsPerFrame_;
    return cubed(remaining(sinceOnset, kickFrames_)) * sine_.at(phaseOfTurns(kickTurns(seconds)));
}

double DrumKit::snare(std::int64_t sinceOnset, std::int64_t frame) const {
    const double seconds = static_cast<double>(sinceOnset) * secondsPerFrame_;
    const double tone = sine_.at(phaseOfTurns(seconds * kSnareToneHz));
    return cubed(remaining(sinceOnset, snareFrames_)) *
           ((0.7 * noiseAt(seed_, frame)) + (0.3 * tone));
}

double DrumKit::hat(std::int64_t sinceOnset, std::int64_t frame) const {
    // Uses another part of the noise than the snare, or the two would be correlated where they
    // overlap.
    const std::uint64_t hatSeed = seed_ + 1;
    const double treble = (noiseAt(hatSeed, frame) + noiseAt(hatSeed, frame - 2)) -
                          (2.0 * noiseAt(hatSeed, frame - 1));
    return cubed(remaining(sinceOnset, hatFrames_)) * (0.25 * treble);
}

}  // namespace beatatlas::test
