// SPDX-License-Identifier: MIT
// Each confidence is the share of tracks that were right in the class into which a statistic of theirs fell, measured on
// synthesised pieces of 48 styles and on recorded and rendered ones. The lower classes hold 2 to 21 tracks each.
#include "track/tempo/tempoConfidence.h"

namespace beatatlas::track::inner {

namespace {

struct Class {
    double below;  // the statistic's upper end
    double right;  // share
};

constexpr Class kTempoByClarity[] = {{2.5, .10}, {4.0, .50}, {8.0, .85}, {16.0, .94}, {1e300, .98}};
constexpr Class kLevelByShare[] = {{.5, .35}, {.7, .71}, {.85, .88}, {.95, .97}, {2.0, .99}};
constexpr Class kPhaseByShare[] = {{.7, .40}, {.85, .60}, {.95, .93}, {2.0, .99}};
constexpr Class kBarsByShare[] = {{.5, .50}, {.7, .60}, {.85, .77}, {.95, .85}, {2.0, .91}};

template <std::size_t count>
double rightOf(const Class (&classes)[count], double statistic) {
    for (const Class& one : classes)
        if (statistic < one.below) return one.right;
    return classes[count - 1].right;
}

/** The probability of the chosen level, at whatever phase. */
double levelShare(const TempoAnswer& answer) {
    double share = 0.0;
    for (const MetreReading& reading : answer.metres)
        if (reading.period == answer.metres.front().period) share += reading.share;
    return share;
}

}  // namespace

BA_TrackConfidence confidenceOf(const TempoAnswer& answer) {
    const double level = levelShare(answer);
    return {rightOf(kTempoByClarity, answer.clarity), rightOf(kLevelByShare, level),
            rightOf(kPhaseByShare, answer.metres.front().share / level),
            rightOf(kBarsByShare, answer.bars.empty() ? 0.0 : answer.bars.front().share)};
}

}  // namespace beatatlas::track::inner
