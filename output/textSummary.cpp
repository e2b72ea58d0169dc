// SPDX-License-Identifier: MIT
#include "output/textSummary.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "output/KeyName.h"
#include "output/textFormat.h"
#include "output/textParts.h"

namespace output {

namespace {

/** The range of the local tempos when they differ, else nothing. */
std::string tempoRange(const std::vector<base::Beat>& beats) {
    if (beats.empty()) return {};
    const auto [slowest, fastest] = std::minmax_element(
        beats.begin(), beats.end(),
        [](const base::Beat& a, const base::Beat& b) { return a.bpm100 < b.bpm100; });
    if (slowest->bpm100 == fastest->bpm100) return {};
    return fmt::format(", {} to {} along the track", bpmText(slowest->bpm100),
                       bpmText(fastest->bpm100));
}

std::string beatsText(const base::AnalysisResult& analysis) {
    const std::vector<base::Beat>& beats = analysis.beats;
    if (beats.empty()) return "none found";
    std::string text =
        fmt::format("{}, first at {}", counted(static_cast<std::int64_t>(beats.size()), "beat"),
                    clockTime(analysis.secondsAt(beats.front().frame)));
    const auto downbeat = std::find_if(beats.begin(), beats.end(),
                                       [](const base::Beat& b) { return b.isDownbeat(); });
    if (downbeat == beats.end()) return text;
    const auto bars = std::count_if(beats.begin(), beats.end(),
                                    [](const base::Beat& b) { return b.isDownbeat(); });
    return text + fmt::format("; {}, first at {}", counted(bars, "bar"),
                              clockTime(analysis.secondsAt(downbeat->frame)));
}

std::string wavesText(const base::AnalysisResult& analysis) {
    return fmt::format(
        "{} loudness, {} dots, {} zoom points", grouped(std::ssize(analysis.loudWave)),
        grouped(std::ssize(analysis.dotsWave)), grouped(std::ssize(analysis.zoomWave)));
}

}  // namespace

std::string tempoText(const TrackReport& report) {
    const auto& bpm100 = report.analysis.bpm100;
    return bpm100 ? bpmText(*bpm100) + " BPM" : "no tempo found";
}

std::string keyText(const TrackReport& report) {
    if (!report.analysis.key) return kNoKeyText;
    const KeyName best(report.analysis.key->keys[0]);
    return best.musical() + "  " + best.camelot();
}

std::string textSummary(const TrackReport& report) {
    const base::AnalysisResult& analysis = report.analysis;
    const base::AnalysisOptions& options = report.options;
    std::string text = trackFileText(report, analysis.frames);
    if (options.tempo != base::TempoMode::off) {
        text += textLine("tempo", tempoText(report) + tempoRange(analysis.beats));
        text += textLine("beats", beatsText(analysis));
    }
    if (options.wantsKey) text += textLine("key", keyDetails(analysis.key));
    text += textLine("waves", wavesText(analysis));
    return text;
}

}  // namespace output
