// SPDX-License-Identifier: MIT
// A tempo map from a beat grid, in these steps:
//   1. the beats are put on ticks, a quarter note each        3. tempos are fitted, run by run
//   2. the lead-in gets the notes that fit the first tempo    4. bars give the metres
#include "output/formats/midi/tempoMap.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace output {

namespace {

using beatatlas::track::Beat;

constexpr double kToleranceMicroseconds = 250.0;
constexpr double kLongestQuarter = 16'777'215.0;  // 24 bits
constexpr double kShortestQuarter = 30'000.0;     // 2000 BPM: no grid is as quick
constexpr int kUsualQuarter = 500'000;            // where there is no beat: 120 BPM, MIDI's default
constexpr int kUsualBar = 4;
constexpr int kLongestBar = 255;
constexpr int kQuarterNote = 4;
constexpr int kShortestNote = 128;

/** A place in both times. */
struct Point {
    std::int64_t tick = 0;
    double microseconds = 0.0;
};

double quartersBetween(const Point& one, const Point& other) {
    return static_cast<double>(other.tick - one.tick) / kTicksPerQuarter;
}

/** The grid, its beats and the quarter notes between them. */
class GridPoints {
public:
    explicit GridPoints(const std::vector<Beat>& beats) : beats_(beats) {}

    /** Up to the first beat. @return the denominator of its notes */
    int addLeadIn() {
        points_.push_back({});
        const double lead = beats_.front().seconds * 1e6;
        if (lead <= 0.0) return kQuarterNote;
        const double quarter = quarterAt(0);
        int denominator = kQuarterNote;
        while (denominator < kShortestNote && lead < 0.5 * quarter * kQuarterNote / denominator)
            denominator *= 2;
        const double note = quarter * kQuarterNote / denominator;
        const std::int64_t ticks = kTicksPerQuarter * kQuarterNote / denominator;
        addSteps(std::max<std::int64_t>(1, std::llround(lead / note)), ticks, lead);
        return denominator;
    }

    void addBeats(std::vector<ClickEvent>& clicks) {
        for (std::size_t i = 0; i < beats_.size(); ++i) {
            if (i > 0) {
                const double to = beats_[i].seconds * 1e6;
                addSteps(quartersBefore(i), kTicksPerQuarter, to);
            }
            clicks.push_back({points_.back().tick, beats_[i].isDownbeat()});
        }
    }

    const std::vector<Point>& points() const { return points_; }

private:
    double intervalBefore(std::size_t beat) const {
        return std::max(1.0, (beats_[beat].seconds - beats_[beat - 1].seconds) * 1e6);
    }

    /** By the beat's tempo, else by the next interval. */
    double quarterAt(std::size_t beat) const {
        double quarter = kUsualQuarter;
        if (beats_[beat].bpm > 0.0)
            quarter = 60e6 / beats_[beat].bpm;
        else if (beat + 1 < beats_.size())
            quarter = intervalBefore(beat + 1);
        return std::clamp(quarter, kShortestQuarter, kLongestQuarter);
    }

    std::int64_t quartersBefore(std::size_t beat) const {
        const double interval = intervalBefore(beat);
        const double fitting = std::round(interval / quarterAt(beat - 1));
        const double fewest = std::ceil(interval / (kLongestQuarter - kToleranceMicroseconds));
        return static_cast<std::int64_t>(std::max({1.0, fitting, fewest}));
    }

    /** Evenly up to a time. */
    void addSteps(std::int64_t steps, std::int64_t ticks, double to) {
        const Point from = points_.back();
        for (std::int64_t i = 1; i <= steps; ++i) {
            const double share = static_cast<double>(i) / static_cast<double>(steps);
            points_.push_back(
                {from.tick + i * ticks, from.microseconds + share * (to - from.microseconds)});
        }
    }

    const std::vector<Beat>& beats_;
    std::vector<Point> points_;
};

/** The tempos that keep points in their place. */
class TempoRange {
public:
    /** @return false, and nothing changed, when no tempo keeps this point too
     *  @param from  where the tempo begins, as far as the events before it have come */
    bool narrow(const Point& from, const Point& point) {
        const double quarters = quartersBetween(from, point);
        const double time = point.microseconds - from.microseconds;
        const double least =
            std::max(least_, std::ceil((time - kToleranceMicroseconds) / quarters));
        const double most = std::min(most_, std::floor((time + kToleranceMicroseconds) / quarters));
        if (least > most) return false;
        least_ = least;
        most_ = most;
        best_ = std::clamp(std::round(time / quarters), least, most);
        return true;
    }

    double best() const { return best_; }

private:
    double least_ = 1.0;
    double most_ = kLongestQuarter;
    double best_ = kUsualQuarter;
};

/** For beats at one place, and for such as are further apart than a tempo can be. */
double nearestTempo(const Point& from, const Point& point) {
    const double time = point.microseconds - from.microseconds;
    return std::clamp(std::round(time / quartersBetween(from, point)), 1.0, kLongestQuarter);
}

/** @param reached  where the events come to in the end */
std::vector<TempoEvent> fitTempos(const std::vector<Point>& points, Point& reached) {
    std::vector<TempoEvent> tempos;
    for (std::size_t first = 0; first + 1 < points.size();) {
        const Point from = reached;
        TempoRange range;
        std::size_t last = first;
        while (last + 1 < points.size() && range.narrow(from, points[last + 1])) ++last;
        double tempo = range.best();
        if (last == first) tempo = nearestTempo(from, points[++last]);
        reached = {points[last].tick,
                   from.microseconds + quartersBetween(from, points[last]) * tempo};
        tempos.push_back({from.tick, static_cast<int>(tempo)});
        first = last;
    }
    if (tempos.empty()) tempos.push_back({0, kUsualQuarter});
    return tempos;
}

/** Quarter notes from one downbeat to the next; 0 behind the last. */
int barLength(const std::vector<ClickEvent>& clicks, std::size_t downbeat) {
    for (std::size_t i = downbeat + 1; i < clicks.size(); ++i) {
        if (!clicks[i].isDownbeat) continue;
        const std::int64_t ticks = clicks[i].tick - clicks[downbeat].tick;
        return static_cast<int>(std::min<std::int64_t>(ticks / kTicksPerQuarter, kLongestBar + 1));
    }
    return 0;
}

/** Bars of a metre with a shorter one before them, up to a downbeat. */
void addPickup(std::vector<MetreEvent>& metres, std::int64_t fromTick, std::int64_t toTick,
               int bar) {
    const auto quarters = (toTick - fromTick) / kTicksPerQuarter;
    const int rest = static_cast<int>(quarters % bar);
    if (rest > 0) metres.push_back({fromTick, rest, kQuarterNote});
    const std::int64_t barsTick = fromTick + std::int64_t{rest} * kTicksPerQuarter;
    metres.push_back({barsTick, bar, kQuarterNote});
}

std::vector<MetreEvent> metresOf(const std::vector<ClickEvent>& clicks, int leadDenominator) {
    std::vector<MetreEvent> metres;
    std::int64_t tick = 0;
    if (leadDenominator != kQuarterNote) {
        metres.push_back({0, 1, leadDenominator});
        tick = clicks.front().tick;
    }
    std::size_t downbeat = 0;
    while (downbeat < clicks.size() && !clicks[downbeat].isDownbeat) ++downbeat;
    const bool hasBars = downbeat < clicks.size();
    const int first = hasBars ? barLength(clicks, downbeat) : 0;
    const int usual = first >= 1 && first <= kLongestBar ? first : kUsualBar;
    addPickup(metres, tick, hasBars ? clicks[downbeat].tick : tick, usual);
    for (std::size_t i = downbeat; i < clicks.size(); ++i) {
        if (!clicks[i].isDownbeat) continue;
        const int length = barLength(clicks, i);
        if (length < 1 || length > kLongestBar || length == metres.back().beats) continue;
        metres.push_back({clicks[i].tick, length, kQuarterNote});
    }
    return metres;
}

}  // namespace

TempoMap layTempoMap(const std::vector<Beat>& beats, double endSeconds) {
    std::vector<Beat> heard;
    std::copy_if(beats.begin(), beats.end(), std::back_inserter(heard),
                 [](const Beat& beat) { return beat.seconds >= 0.0; });
    TempoMap map;
    Point reached;
    if (heard.empty()) {
        map.tempos.push_back({0, kUsualQuarter});
        map.metres.push_back({});
    } else {
        GridPoints grid(heard);
        const int leadDenominator = grid.addLeadIn();
        grid.addBeats(map.clicks);
        map.tempos = fitTempos(grid.points(), reached);
        map.metres = metresOf(map.clicks, leadDenominator);
    }
    const double left = std::max(0.0, endSeconds * 1e6 - reached.microseconds);
    const double quarters = left / map.tempos.back().microseconds;
    map.endTick = reached.tick + std::llround(quarters * kTicksPerQuarter);
    return map;
}

}  // namespace output
