// SPDX-License-Identifier: MIT
#include "comparison/Comparison.h"

#include "comparison/matchBeats.h"

namespace comparison {

namespace {

constexpr double kWideSeconds = 0.07;
constexpr double kNarrowSeconds = 0.02;

Times timesOf(const BeatSheet& sheet) {
    Times times;
    for (const SheetBeat& beat : sheet.beats) times.push_back(beat.seconds);
    return times;
}

Times downbeatsOf(const BeatSheet& sheet) {
    Times times;
    for (const SheetBeat& beat : sheet.beats) {
        if (beat.isDownbeat()) times.push_back(beat.seconds);
    }
    return times;
}

Times readAs(const Times& beats, Reading reading) {
    switch (reading) {
    case Reading::twice:
        return doubled(beats);
    case Reading::half:
        return everyOther(beats, 0);
    case Reading::otherHalf:
        return everyOther(beats, 1);
    case Reading::shifted:
        return shifted(beats);
    case Reading::same:
        break;
    }
    return beats;
}

Agreement agreementOf(const Times& a, const Times& b) {
    return {fMeasure(a, b, kWideSeconds), fMeasure(a, b, kNarrowSeconds)};
}

void compareBeats(const Times& a, const Times& b, Comparison& comparison) {
    if (a.empty() && b.empty()) return;
    comparison.beats.emplace();
    for (std::size_t i = 0; i < kReadings.size(); ++i)
        comparison.beats->at(i) = agreementOf(a, readAs(b, kReadings.at(i)));
    comparison.lateness = medianLateness(a, b, kWideSeconds);
}

}  // namespace

Reading Comparison::likeliest() const {
    std::size_t best = 0;
    for (std::size_t i = 1; beats && i < kReadings.size(); ++i) {
        if (beats->at(i).within70 > beats->at(best).within70) best = i;
    }
    return kReadings.at(best);
}

Comparison compareSheets(const BeatSheet& a, const BeatSheet& b) {
    Comparison comparison;
    if (a.bpm && b.bpm) comparison.tempoRatio = *a.bpm / *b.bpm;
    compareBeats(timesOf(a), timesOf(b), comparison);
    if (a.hasBars() && b.hasBars())
        comparison.downbeats = agreementOf(downbeatsOf(a), downbeatsOf(b));
    if (a.key && b.key) comparison.key = keyRelation(*a.key, *b.key);
    return comparison;
}

}  // namespace comparison
