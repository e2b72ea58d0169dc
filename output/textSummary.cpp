// SPDX-License-Identifier: MIT
#include "output/textSummary.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "output/textFormat.h"
#include "output/textParts.h"

namespace output {

namespace {

template <class Part>
std::string tempoRangeOf(const std::vector<Part>& parts, const char* layout) {
    if (parts.empty()) return {};
    const auto [slowest, fastest] = std::minmax_element(
        parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.bpm < b.bpm; });
    if (slowest->bpm == fastest->bpm) return {};
    return fmt::format(fmt::runtime(layout), bpmText(slowest->bpm), bpmText(fastest->bpm));
}

/** The range of the tempo: over its segments if these are known, otherwise over its beats. */
std::string tempoRange(const beatatlas::track::TrackResult& analysis) {
    const auto& judgement = analysis.judgement;
    if (judgement && !judgement->isSteady && judgement->stretches.size() > 1)
        return tempoRangeOf(judgement->stretches, ", varies: {} to {}");
    return tempoRangeOf(analysis.beats, ", {} to {} along the track");
}

// A result that is right on fewer tracks than this is shown with its likeliest alternative.
constexpr double kSure = 0.9;

/** What else the tempo may be, if it is uncertain. */
std::string doubtsText(const beatatlas::track::TempoJudgement& judgement) {
    std::string text;
    const auto hasOtherTempo = [](const beatatlas::track::Reading& reading) {
        return reading.kind != beatatlas::track::ReadingKind::shifted;
    };
    const auto& readings = judgement.readings;
    const auto other = std::find_if(readings.begin(), readings.end(), hasOtherTempo);
    if (judgement.confidence.level < kSure && other != readings.end())
        text += ", perhaps " + bpmText(other->bpm);
    if (judgement.confidence.phase < kSure) text += ", beats perhaps between these";
    if (judgement.confidence.tempo < kSure) text += "; hardly a clear pulse";
    return text;
}

/** What the automatic tempo shows besides the tempo. */
std::string judgementText(const beatatlas::track::TrackResult& analysis) {
    if (!analysis.judgement) return {};
    const beatatlas::track::TempoJudgement& judgement = *analysis.judgement;
    std::string text;
    if (judgement.rawBpm != *analysis.bpm)
        text += " (" + bpmText(judgement.rawBpm) + " before it was brought into the range)";
    return text + doubtsText(judgement);
}

std::string beatsText(const beatatlas::track::TrackResult& analysis) {
    const std::vector<beatatlas::track::Beat>& beats = analysis.beats;
    if (beats.empty()) return "none found";
    std::string text =
        fmt::format("{}, first at {}", counted(static_cast<std::int64_t>(beats.size()), "beat"),
                    clockTime(analysis.secondsAt(beats.front().frame)));
    const auto downbeat = std::find_if(
        beats.begin(), beats.end(), [](const beatatlas::track::Beat& b) { return b.isDownbeat(); });
    if (downbeat == beats.end()) return text;
    const auto bars = std::count_if(beats.begin(), beats.end(),
                                    [](const beatatlas::track::Beat& b) { return b.isDownbeat(); });
    return text + fmt::format("; {}, first at {}", counted(bars, "bar"),
                              clockTime(analysis.secondsAt(downbeat->frame)));
}

/** Which key holds where; an additional line when the key changes. */
std::string keyChangesText(const TrackReport& report) {
    const auto& key = report.analysis.key;
    if (!key || key->segments.size() < 2) return {};
    std::string text;
    for (const beatatlas::track::KeySegment& segment : key->segments)
        text += (text.empty() ? "" : ", ") + shortKeyName(segment.key, report.keyNotation) +
                " from " + clockTime(segment.fromSeconds);
    return textLine("changes", text);
}

std::string wavesText(const beatatlas::track::TrackResult& analysis) {
    return fmt::format("{} loudness, {}, {}", grouped(std::ssize(analysis.loudWave)),
                       counted(std::ssize(analysis.dotsWave), "dot"),
                       counted(std::ssize(analysis.zoomWave), "zoom point"));
}

}  // namespace

std::string tempoText(const TrackReport& report) {
    const auto& bpm = report.analysis.bpm;
    return bpm ? bpmText(*bpm) + " BPM" : "no tempo found";
}

std::string tempoRemarks(const TrackReport& report) {
    return tempoRange(report.analysis) + judgementText(report.analysis);
}

std::string keyText(const TrackReport& report) {
    if (!report.analysis.key) return kNoKeyText;
    return shortKeyName(report.analysis.key->best(), report.keyNotation);
}

std::string textSummary(const TrackReport& report) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    const beatatlas::track::Options& options = report.options;
    std::string text = trackFileText(report, analysis.frames);
    if (options.tempo != beatatlas::track::TempoMode::off) {
        text += textLine("tempo", tempoText(report) + tempoRemarks(report));
        text += textLine("beats", beatsText(analysis));
    }
    if (options.wantsKey) text += textLine("key", keyDetails(report)) + keyChangesText(report);
    text += textLine("waves", wavesText(analysis));
    return text;
}

}  // namespace output
