// SPDX-License-Identifier: MIT
#include "catalogue/correction/corrected.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace catalogue {

namespace {

using beatatlas::track::Beat;
using beatatlas::track::TempoJudgement;
using beatatlas::track::TrackResult;

constexpr double kLowestBpm = 20.0;
constexpr double kHighestBpm = 1000.0;
constexpr double kSecondsPerMinute = 60.0;
constexpr double kMillisecondsPerSecond = 1000.0;
constexpr double kHundredths = 100.0;
constexpr int kUsualBar = 4;
constexpr int kShortestBar = 3;

/** So many new beats for so many old ones. */
struct Ratio {
    int beats;
    int forBeats;

    double value() const { return static_cast<double>(beats) / forBeats; }
};

constexpr Ratio kTwice = {2, 1};
constexpr Ratio kHalf = {1, 2};
constexpr Ratio kThreeToTwo = {3, 2};

/** Tempos that leave the pulse of the music as it was found. */
constexpr std::array<Ratio, 9> kMultiples = {
    {{1, 1}, {2, 1}, {1, 2}, {3, 2}, {2, 3}, {3, 1}, {1, 3}, {4, 1}, {1, 4}}};

double inHundredths(double bpm) {
    return std::round(bpm * kHundredths) / kHundredths;
}

bool isTempo(double bpm) {
    return bpm >= kLowestBpm && bpm <= kHighestBpm;
}

Beat beatAt(double seconds, double bpm, const TrackResult& result) {
    const auto last = static_cast<double>(result.frames - 1);
    const double frame = std::clamp(std::round(seconds * result.rate), 0.0, std::max(last, 0.0));
    return {seconds, inHundredths(bpm), static_cast<std::int64_t>(frame), 0};
}

/** Beats of the bars as most of them are. */
int barLength(const std::vector<Beat>& beats) {
    const auto bars = std::count_if(beats.begin(), beats.end(),
                                    [](const Beat& beat) { return beat.isDownbeat(); });
    int length = 0;
    for (int number = kShortestBar; number <= 2 * kUsualBar; ++number) {
        const auto found = std::count_if(beats.begin(), beats.end(), [number](const Beat& beat) {
            return beat.numberInBar == number;
        });
        if (found > 0 && 2 * found >= bars - 1) length = number;
    }
    return length > 0 ? length : kUsualBar;
}

std::size_t firstDownbeat(const std::vector<Beat>& beats) {
    const auto found = std::find_if(beats.begin(), beats.end(),
                                    [](const Beat& beat) { return beat.isDownbeat(); });
    return found == beats.end() ? 0 : static_cast<std::size_t>(found - beats.begin());
}

/** Counts bars through in both directions from one downbeat. */
void countBars(std::vector<Beat>& beats, std::size_t downbeat, int length) {
    const auto bar = static_cast<std::size_t>(length);
    // A multiple of the bar keeps the difference above 0.
    const std::size_t origin = downbeat % bar;
    for (std::size_t i = 0; i < beats.size(); ++i)
        beats[i].numberInBar = static_cast<int>((i + bar - origin) % bar) + 1;
}

/** Where the grid is between its beats. @param index  0 to the number of beats - 1 */
double secondsAt(const std::vector<Beat>& beats, std::size_t index, double fraction) {
    const double begin = beats[index].seconds;
    if (fraction == 0.0) return begin;
    return begin + fraction * (beats[index + 1].seconds - begin);
}

/** Divides the grid anew from its first downbeat, which stays one. Old beats that remain keep their
 *  places exactly. */
void respace(TrackResult& result, Ratio ratio) {
    const std::vector<Beat> old = std::exchange(result.beats, {});
    const std::size_t anchor = firstDownbeat(old);
    const auto beats = static_cast<std::size_t>(ratio.beats);
    const auto forBeats = static_cast<std::size_t>(ratio.forBeats);
    // Places are counted in parts of an old beat, of which a beat has as many as new beats come for
    // the old ones; the first place is one that the anchor is on.
    const std::size_t anchorPart = anchor * beats;
    for (std::size_t part = anchorPart % forBeats; part <= (old.size() - 1) * beats;
         part += forBeats) {
        const std::size_t index = part / beats;
        const double fraction =
            static_cast<double>(part % beats) / static_cast<double>(ratio.beats);
        result.beats.push_back(
            beatAt(secondsAt(old, index, fraction), old[index].bpm * ratio.value(), result));
        if (fraction == 0.0) result.beats.back().frame = old[index].frame;
    }
    countBars(result.beats, anchorPart / forBeats, barLength(old));
}

void scaleTempo(TrackResult& result, Ratio ratio) {
    if (result.bpm) result.bpm = inHundredths(*result.bpm * ratio.value());
    if (!result.judgement) return;
    for (auto& stretch : result.judgement->stretches)
        stretch.bpm = inHundredths(stretch.bpm * ratio.value());
}

/** What a person says of the tempo leaves no other readings. */
void settleTempo(TrackResult& result) {
    if (!result.judgement) return;
    TempoJudgement& judgement = *result.judgement;
    judgement.rawBpm = result.bpm.value_or(0.0);
    judgement.confidence.tempo = 1.0;
    judgement.confidence.level = 1.0;
    judgement.readings.clear();
}

void multiply(TrackResult& result, Ratio ratio) {
    respace(result, ratio);
    scaleTempo(result, ratio);
    settleTempo(result);
}

/** One tempo throughout, through the first downbeat. */
void laySteadyGrid(TrackResult& result, double bpm) {
    const bool hadBeats = !result.beats.empty();
    const double anchor = hadBeats ? result.beats[firstDownbeat(result.beats)].seconds : 0.0;
    const int bar = barLength(result.beats);
    const double interval = kSecondsPerMinute / bpm;
    const auto before = static_cast<std::size_t>(std::max(std::floor(anchor / interval), 0.0));
    result.beats.clear();
    const double first = anchor - static_cast<double>(before) * interval;
    for (std::size_t i = 0;; ++i) {
        const double seconds = i < before ? first + static_cast<double>(i) * interval
                                          : anchor + static_cast<double>(i - before) * interval;
        if (seconds >= result.seconds()) break;
        result.beats.push_back(beatAt(seconds, bpm, result));
    }
    if (!result.beats.empty()) countBars(result.beats, before, bar);
    if (!result.judgement || result.beats.empty()) return;
    result.judgement->isSteady = true;
    result.judgement->stretches = {
        {result.beats.front().seconds, result.beats.back().seconds, bpm}};
}

void setTempo(TrackResult& result, double value) {
    const double bpm = inHundredths(value);
    const auto isOf = [&](Ratio ratio) {
        if (!result.bpm || result.beats.empty()) return false;
        // Half of 111.11 is 55.56 for whoever reads it.
        const double offHundredths =
            std::round(bpm / ratio.value() * kHundredths) - *result.bpm * kHundredths;
        return std::abs(offHundredths) < 1.5;
    };
    const auto multiple = std::find_if(kMultiples.begin(), kMultiples.end(), isOf);
    if (multiple != kMultiples.end()) {
        if (multiple->beats != multiple->forBeats) respace(result, *multiple);
        scaleTempo(result, *multiple);
    } else {
        laySteadyGrid(result, bpm);
    }
    result.bpm = bpm;
    settleTempo(result);
}

void settlePhase(TrackResult& result) {
    if (result.judgement) result.judgement->confidence.phase = 1.0;
}

/** Every beat moves halfway to the next one and keeps its number. */
void shiftHalf(TrackResult& result) {
    const std::vector<Beat> old = std::exchange(result.beats, {});
    double interval = old.front().bpm > 0.0 ? kSecondsPerMinute / old.front().bpm : 0.0;
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (i + 1 < old.size()) interval = old[i + 1].seconds - old[i].seconds;
        const double seconds = old[i].seconds + interval / 2.0;
        if (seconds >= result.seconds()) break;
        result.beats.push_back(beatAt(seconds, old[i].bpm, result));
        result.beats.back().numberInBar = old[i].numberInBar;
    }
    settlePhase(result);
}

void shiftBy(TrackResult& result, double milliseconds) {
    const std::vector<Beat> old = std::exchange(result.beats, {});
    for (const Beat& beat : old) {
        const double seconds = beat.seconds + milliseconds / kMillisecondsPerSecond;
        if (seconds < 0.0 || seconds >= result.seconds()) continue;
        result.beats.push_back(beatAt(seconds, beat.bpm, result));
        result.beats.back().numberInBar = beat.numberInBar;
    }
    settlePhase(result);
}

void setDownbeat(TrackResult& result, double seconds) {
    const auto nearest = std::min_element(
        result.beats.begin(), result.beats.end(), [seconds](const Beat& a, const Beat& b) {
            return std::abs(a.seconds - seconds) < std::abs(b.seconds - seconds);
        });
    countBars(result.beats, static_cast<std::size_t>(nearest - result.beats.begin()),
              barLength(result.beats));
    if (result.judgement) result.judgement->confidence.bars = 1.0;
}

void setKey(TrackResult& result, int number) {
    if (!result.key) {
        result.key.emplace();
        for (std::size_t i = 0; i < result.key->ranking.size(); ++i)
            result.key->ranking.at(i).key = static_cast<int>(i);
    }
    auto& ranking = result.key->ranking;
    const auto chosen = std::find_if(ranking.begin(), ranking.end(),
                                     [number](const auto& each) { return each.key == number; });
    if (chosen != ranking.end()) std::rotate(ranking.begin(), chosen, chosen + 1);
    result.key->confidence = 1.0;
    result.key->segments = {{0.0, result.seconds(), number, 1.0}};
}

void apply(TrackResult& result, const Edit& edit) {
    switch (edit.kind) {
    case EditKind::bpm:
        return setTempo(result, edit.value);
    case EditKind::twice:
        return multiply(result, kTwice);
    case EditKind::half:
        return multiply(result, kHalf);
    case EditKind::threeToTwo:
        return multiply(result, kThreeToTwo);
    case EditKind::shiftHalf:
        return shiftHalf(result);
    case EditKind::shiftMilliseconds:
        return shiftBy(result, edit.value);
    case EditKind::downbeat:
        return setDownbeat(result, edit.value);
    case EditKind::key:
        return setKey(result, static_cast<int>(edit.value));
    }
}

const char* tempoRefusal(const TrackResult& result, Ratio ratio) {
    const bool isPossible = result.bpm && isTempo(*result.bpm * ratio.value());
    return isPossible ? nullptr : "would get a tempo beyond 20 to 1000 BPM";
}

const char* shiftRefusal(const TrackResult& result, double seconds) {
    if (!(std::abs(seconds) < result.seconds())) return "is shorter than the shift";
    const auto stays = [&](const Beat& beat) {
        return beat.seconds + seconds >= 0.0 && beat.seconds + seconds < result.seconds();
    };
    const bool leavesBeats = std::any_of(result.beats.begin(), result.beats.end(), stays);
    return leavesBeats ? nullptr : "would have no beats left";
}

}  // namespace

const char* refusalOf(const TrackResult& result, const Edit& edit) {
    const bool needsBeats = edit.kind != EditKind::bpm && edit.kind != EditKind::key;
    if (needsBeats && result.beats.empty()) return "has no beats";
    if (!std::isfinite(edit.value)) return "gets a number that is none";
    switch (edit.kind) {
    case EditKind::bpm:
        return isTempo(edit.value) ? nullptr : "would get a tempo beyond 20 to 1000 BPM";
    case EditKind::twice:
        return tempoRefusal(result, kTwice);
    case EditKind::half:
        return tempoRefusal(result, kHalf);
    case EditKind::threeToTwo:
        return tempoRefusal(result, kThreeToTwo);
    case EditKind::shiftMilliseconds:
        return shiftRefusal(result, edit.value / kMillisecondsPerSecond);
    case EditKind::downbeat:
        return edit.value >= 0.0 && edit.value < result.seconds() ? nullptr
                                                                  : "does not last so long";
    case EditKind::key:
        return edit.value >= 0.0 && edit.value < beatatlas::track::kKeyCount
                   ? nullptr
                   : "gets a key that is none";
    default:
        return nullptr;
    }
}

TrackResult corrected(TrackResult result, const std::vector<Edit>& edits) {
    for (const Edit& edit : simplified(edits)) {
        if (refusalOf(result, edit) == nullptr) apply(result, edit);
    }
    return result;
}

}  // namespace catalogue
