// SPDX-License-Identifier: MIT
#include "track/tempo/layBeats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "track/evidence/OnsetEnvelopes.h"
#include "track/tempo/parabola.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kTwelfths = 12.0;
constexpr int kReach = 5;  // frames
constexpr int kHeard = kReach + 2;
constexpr std::size_t kShifts = 2 * kHeard + 1;
constexpr double kMostShift = 0.03;
// The onsets must be stronger there by this factor, otherwise the beats stay where they were found.
constexpr double kClearlyMore = 1.15;
// A beat this much before the start of the track is moved to the start.
constexpr double kEarlySeconds = 0.03;
constexpr double kLateSeconds = 0.02;

double valueAt(const std::vector<float>& sharp, double frame) {
    const double place = std::clamp(frame, 0.0, static_cast<double>(sharp.size() - 1));
    const auto before = static_cast<std::size_t>(place);
    const std::size_t after = std::min(before + 1, sharp.size() - 1);
    const double share = place - static_cast<double>(before);
    const auto low = static_cast<double>(sharp[before]);
    return low + share * (static_cast<double>(sharp[after]) - low);
}

/** The mean onset strength at the beats when they are shifted by −7 … 7 frames, smoothed over
 *  neighbouring shifts. */
std::array<double, kShifts> onsetsByShift(const std::vector<float>& sharp,
                                          const std::vector<double>& beats) {
    std::array<double, kShifts> means{};
    for (const double beat : beats)
        for (std::size_t i = 0; i < kShifts; ++i)
            means[i] += valueAt(sharp, beat * OnsetEnvelopes::kFramesPerSecond +
                                           static_cast<double>(i) - kHeard) /
                        static_cast<double>(beats.size());
    std::array<double, kShifts> smoothed{};
    for (std::size_t i = 0; i < kShifts; ++i)
        smoothed[i] = 0.25 * means[i == 0 ? 0 : i - 1] + 0.5 * means[i] +
                      0.25 * means[std::min(i + 1, kShifts - 1)];
    return smoothed;
}

/** By how many seconds the beats lie before their onsets; negative: after them. */
double shiftOf(const std::vector<float>& sharp, const std::vector<double>& beats) {
    constexpr std::size_t kFirst = kHeard - kReach;
    constexpr std::size_t kLast = kHeard + kReach;
    const std::array<double, kShifts> onsets = onsetsByShift(sharp, beats);
    std::size_t best = kFirst;
    for (std::size_t i = kFirst; i <= kLast; ++i)
        if (onsets[i] > onsets[best]) best = i;
    if (onsets[best] <= kClearlyMore * onsets[kHeard]) return 0.0;
    double frames = static_cast<double>(best) - kHeard;
    if (best > kFirst && best < kLast)
        frames += parabolaTop(onsets[best - 1], onsets[best], onsets[best + 1]);
    return std::clamp(frames / OnsetEnvelopes::kFramesPerSecond, -kMostShift, kMostShift);
}

std::vector<double> withinTrack(const std::vector<double>& beats, double from, double to) {
    std::vector<double> inside;
    for (const double beat : beats)
        if (beat >= from && beat < to) inside.push_back(std::max(0.0, beat));
    return inside;
}

std::vector<double> evenBeats(double seconds, const BeatLine& line, const MetreReading& metre) {
    const double interval = 60.0 / metre.bpm;
    const double anyBeat = line.timeAt(metre.phase / kTwelfths);
    const double before = std::ceil(anyBeat / interval) + 1.0;
    std::vector<double> beats;
    for (double k = -before; anyBeat + k * interval < seconds + interval; ++k)
        beats.push_back(anyBeat + k * interval);
    return beats;
}

/** Starts one beat before the line, which may still lie within the track. */
std::vector<double> beatsOnLine(double seconds, const BeatLine& line, const MetreReading& metre) {
    std::vector<double> beats;
    for (double k = -1.0;; ++k) {
        const double beat = line.timeAt((metre.phase + k * metre.period) / kTwelfths);
        if (beat >= seconds) return beats;
        beats.push_back(beat);
    }
}

}  // namespace

std::vector<double> layBeats(const std::vector<float>& sharp, double seconds, const BeatLine& line,
                             const MetreReading& metre, bool isSteady) {
    std::vector<double> beats =
        isSteady ? evenBeats(seconds, line, metre) : beatsOnLine(seconds, line, metre);
    std::vector<double> heard;
    for (const double beat : beats)
        if (beat > 0.0 && beat < seconds) heard.push_back(beat);
    const double shift = heard.empty() ? 0.0 : shiftOf(sharp, heard);
    for (double& beat : beats) beat += shift;
    return withinTrack(beats, -kEarlySeconds, seconds - kLateSeconds);
}

}  // namespace beatatlas::track::inner
