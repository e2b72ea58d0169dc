// SPDX-License-Identifier: MIT
// Method: dynamic programming after D. Ellis, "Beat tracking by dynamic programming" (2007). Each
// frame's score is that of its onset plus the best score of an earlier beat, less a cost for the
// interval between them.
//   1. the onsets, smoothed; each summed with those a half, a quarter and three quarters of a beat
//      later
//   2. scores frame by frame, and for each frame the beat before it
//   3. from the best of the last frames backward, beat by beat
//   4. each beat is moved onto the peak of its onset; beats are added before the first one
#include "track/tempo/trackBeats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "track/evidence/OnsetEnvelopes.h"
#include "track/tempo/parabola.h"

namespace beatatlas::track::inner {

namespace {

constexpr double kFramesPerSecond = OnsetEnvelopes::kFramesPerSecond;
// The range of the distance to the beat before, in periods.
constexpr double kLongest = 1.25;
constexpr double kShortest = 0.8;
// An interval that is off by a tenth costs four standard deviations of the onsets.
constexpr double kPriceOfDistance = 400.0;
constexpr double kTailPeriods = 1.2;
constexpr double kTiny = 1e-9;

/** Onsets relative to their standard deviation, smoothed over neighbouring frames. */
std::vector<double> smoothedOnsets(const std::vector<float>& sharp) {
    const auto count = static_cast<double>(sharp.size());
    double sum = 0.0;
    for (const float value : sharp) sum += static_cast<double>(value);
    const double mean = sum / count;
    double squares = 0.0;
    for (const float value : sharp) {
        const double apart = static_cast<double>(value) - mean;
        squares += apart * apart;
    }
    const double unit = std::sqrt(squares / count) + kTiny;
    std::vector<double> onsets(sharp.size());
    const auto at = [&](std::size_t i) {
        return i < sharp.size() ? static_cast<double>(sharp[i]) / unit : 0.0;
    };
    for (std::size_t i = 0; i < onsets.size(); ++i)
        onsets[i] = 0.25 * (i > 0 ? at(i - 1) : 0.0) + 0.5 * at(i) + 0.25 * at(i + 1);
    return onsets;
}

double valueAt(const std::vector<double>& values, double place) {
    const auto before = static_cast<std::size_t>(place);
    if (before + 1 >= values.size()) return values.back();
    const double share = place - static_cast<double>(before);
    return values[before] + share * (values[before + 1] - values[before]);
}

class Tracker {
public:
    Tracker(const std::vector<float>& sharp, const LocalTempo& tempo)
        : onsets_(smoothedOnsets(sharp)), tempo_(tempo), distances_(sharp.size()) {
        scores_.resize(onsets_.size());
        for (std::size_t i = 1; i < logs_.size(); ++i) logs_[i] = std::log(static_cast<double>(i));
    }

    /** Returns the frames of the beats. */
    std::vector<std::size_t> run() {
        for (std::size_t t = 0; t < onsets_.size(); ++t) score(t);
        std::vector<std::size_t> beats = {lastBeat()};
        while (distances_[beats.back()] > 0)
            beats.push_back(beats.back() - distances_[beats.back()]);
        std::reverse(beats.begin(), beats.end());
        return beats;
    }

private:
    double periodAt(std::size_t frame) const {
        return kFramesPerSecond / tempo_.at(static_cast<double>(frame) / kFramesPerSecond);
    }

    double combAt(std::size_t frame, double period) const {
        const auto ahead = [&](double periods) {
            return valueAt(onsets_, static_cast<double>(frame) + periods * period);
        };
        return onsets_[frame] + 0.5 * ahead(0.5) + 0.25 * (ahead(0.25) + ahead(0.75));
    }

    void score(std::size_t t) {
        const auto now = static_cast<double>(t);
        const double period = periodAt(t);
        scores_[t] = combAt(t, period);
        if (now - kShortest * period < 0.0) return;
        const auto first = static_cast<std::size_t>(std::max(0.0, now - kLongest * period));
        const auto last = static_cast<std::size_t>(now - kShortest * period);
        const double logPeriod = std::log(period);
        double best = 0.0;
        for (std::size_t k = first; k <= last; ++k) {
            const double off = logOf(t - k) - logPeriod;
            const double score = scores_[k] - kPriceOfDistance * off * off;
            if (score <= best) continue;
            best = score;
            distances_[t] = static_cast<std::uint16_t>(t - k);
        }
        scores_[t] += best;
    }

    double logOf(std::size_t frames) const {
        return frames < logs_.size() ? logs_[frames] : std::log(static_cast<double>(frames));
    }

    /** The best-scoring frame within the last 1.2 beats of the track. */
    std::size_t lastBeat() const {
        const double frames = static_cast<double>(onsets_.size());
        const double tail = frames - kTailPeriods * periodAt(onsets_.size() - 1);
        const auto first = scores_.begin() + static_cast<std::ptrdiff_t>(std::max(0.0, tail));
        return static_cast<std::size_t>(std::max_element(first, scores_.end()) - scores_.begin());
    }

    std::vector<double> onsets_;
    const LocalTempo& tempo_;
    std::vector<double> scores_;
    std::vector<std::uint16_t> distances_;  // to the beat before, in frames; 0: none
    std::array<double, 1024> logs_{};
};

/** The position of an onset between frames: the maximum of the parabola through it. */
double placeOfOnset(const std::vector<float>& sharp, std::size_t frame) {
    const auto place = static_cast<double>(frame);
    if (frame == 0 || frame + 1 >= sharp.size()) return place;
    const auto at = [&](std::size_t i) { return static_cast<double>(sharp[i]); };
    const double top = parabolaTop(at(frame - 1), at(frame), at(frame + 1));
    return place + std::clamp(top, -0.5, 0.5);
}

}  // namespace

std::vector<double> trackBeats(const std::vector<float>& sharp, const LocalTempo& tempo) {
    const std::vector<std::size_t> frames = Tracker(sharp, tempo).run();
    std::vector<double> beats;
    const double first = placeOfOnset(sharp, frames.front()) / kFramesPerSecond;
    const double hz = tempo.hz.front();
    for (double before = std::trunc(first * hz); before > 0.0; --before)
        beats.push_back(first - before / hz);
    for (const std::size_t frame : frames)
        beats.push_back(placeOfOnset(sharp, frame) / kFramesPerSecond);
    return beats;
}

}  // namespace beatatlas::track::inner
