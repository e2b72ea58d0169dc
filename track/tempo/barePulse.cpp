// SPDX-License-Identifier: MIT
#include "track/tempo/barePulse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace beatatlas::track::inner {

namespace {

constexpr double kTwelfths = 12.0;
// The mean change from two seconds to the next two. A bar of accents gives 0.11 at most, arpeggios
// and repeated chords in even notes, between which nothing sounds either, 0.17 and more.
constexpr double kOtherChords = 0.15;
// Nothing sounds between two beats if no onset in the middle half reaches this share of those on
// beats. Metronomes stay below a twentieth, the barest music begins at a quarter.
constexpr double kNothing = 0.1;
// The onset that nine beats of ten have.
constexpr double kTenth = 0.1;
// Every second beat differs if the levels, natural logarithms, are this far apart.
constexpr double kOtherSound = 0.5;
constexpr double kOnsetSeconds = 0.03;
// A sound reaches its level within this time.
constexpr double kRiseSeconds = 0.06;
// Of fewer beats, a quantile says little.
constexpr std::ptrdiff_t kLeastSounds = 6;

/** The value below which a share of at least one value lies. Reorders the values. */
double quantileOf(std::vector<float>& values, double share) {
    const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + rank, values.end());
    return static_cast<double>(values[static_cast<std::size_t>(rank)]);
}

/** The sounds on the beats and between them, without the first and the last beat, which the ends
 *  of the track may cut. */
class Pulse {
public:
    Pulse(const OnsetEnvelopes& onsets, const BeatLine& line, int period, int phase, int beats)
        : onsets_(onsets), line_(line), period_(period), phase_(phase), last_(beats - 1) {
        for (int k = 1; k < last_; ++k) {
            const double time = timeOf(k);
            sounds_.push_back(strongestOnset(time - kOnsetSeconds, time + kOnsetSeconds));
        }
        leaveOutSilentEnds();
    }

    bool isAlone() const {
        if (std::ssize(sounds_) < kLeastSounds) return false;
        std::vector<float> sounds = sounds_;
        const auto nothing = static_cast<float>(kNothing * quantileOf(sounds, kTenth));
        for (int k = 1; k < last_; ++k)
            if (strongestOnset(timeOf(k + 0.25), timeOf(k + 0.75)) >= nothing) return false;
        return true;
    }

    /** An accent on every third or fourth beat is no difference: it leaves the lower or the upper
     *  quartile of even and of odd beats alike. */
    bool isAlike() const {
        for (std::size_t group = 0; group < kGroups; ++group) {
            std::array<std::vector<float>, 2> levels;  // of even and of odd beats
            for (int i = 0; i < std::ssize(sounds_); ++i)
                levels[static_cast<std::size_t>(i % 2)].push_back(levelOf(group, first_ + i));
            if (std::min(apart(levels, 0.25), apart(levels, 0.75)) > kOtherSound) return false;
        }
        return true;
    }

private:
    /** Tracks begin and end in silence, where no beat sounds. */
    void leaveOutSilentEnds() {
        const float loudest = sounds_.empty() ? 0.0F : std::ranges::max(sounds_);
        const auto isHeard = [&](float sound) {
            return sound > static_cast<float>(kNothing) * loudest;
        };
        sounds_.erase(std::find_if(sounds_.rbegin(), sounds_.rend(), isHeard).base(),
                      sounds_.end());
        const auto first = std::ranges::find_if(sounds_, isHeard);
        first_ += static_cast<int>(first - sounds_.begin());
        sounds_.erase(sounds_.begin(), first);
    }

    double timeOf(double beat) const { return line_.timeAt((phase_ + beat * period_) / kTwelfths); }

    float strongestOnset(double from, double to) const {
        return mostFrom(from, to, [this](std::size_t frame) { return onsets_.full[frame]; });
    }

    float levelOf(std::size_t group, int beat) const {
        const double time = timeOf(beat);
        return mostFrom(time - kOnsetSeconds, time + kRiseSeconds,
                        [&](std::size_t frame) { return onsets_.level[frame][group]; });
    }

    template <class Value>
    float mostFrom(double from, double to, const Value& value) const {
        const std::size_t last = onsets_.frameAt(to);
        std::size_t frame = onsets_.frameAt(from);
        float most = value(frame);
        while (frame < last) most = std::max(most, value(++frame));
        return most;
    }

    static double apart(std::array<std::vector<float>, 2>& levels, double share) {
        return std::abs(quantileOf(levels[0], share) - quantileOf(levels[1], share));
    }

    const OnsetEnvelopes& onsets_;
    const BeatLine& line_;
    int period_;
    int phase_;
    int last_;
    std::vector<float> sounds_;  // the onset of each beat from the first one heard
    int first_ = 1;
};

}  // namespace

bool isBarePulse(const Evidence& evidence, const BeatLine& line, int period, int phase, int beats) {
    if (evidence.changes.means[ChordChanges::kTwo] > kOtherChords) return false;
    const Pulse pulse(evidence.onsets, line, period, phase, beats);
    return pulse.isAlone() && pulse.isAlike();
}

}  // namespace beatatlas::track::inner
