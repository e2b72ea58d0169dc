// SPDX-License-Identifier: MIT
#include "report/textSummary.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "io/displayName.h"
#include "report/KeyName.h"
#include "report/textFormat.h"

namespace app {

namespace {

std::string line(const std::string& label, const std::string& value) {
    return fmt::format("  {:<9}{}\n", label, value);
}

std::string channelsText(int channels) {
    if (channels == 1) return "mono";
    if (channels == 2) return "stereo";
    return fmt::format("{} channels", channels);
}

std::string formatText(const TrackReport& report) {
    const TrackFormat& format = report.format;
    std::string text = fmt::format("{}, {} Hz, {}", format.codec, grouped(format.trackRate),
                                   channelsText(format.channels));
    if (format.trackRate != format.sessionRate) {
        text += fmt::format(" (analysed at {} Hz)", grouped(format.sessionRate));
    }
    return text;
}

std::string lengthText(const AnalysisResult& analysis) {
    return fmt::format("{}  ({} frames)", clockTime(analysis.seconds()), grouped(analysis.frames));
}

/** The range of the local tempos when they differ, else nothing. */
std::string tempoRange(const std::vector<Beat>& beats) {
    if (beats.empty()) return {};
    const auto [slowest, fastest] =
        std::minmax_element(beats.begin(), beats.end(),
                            [](const Beat& a, const Beat& b) { return a.bpm100 < b.bpm100; });
    if (slowest->bpm100 == fastest->bpm100) return {};
    return fmt::format(", {} to {} along the track", bpmText(slowest->bpm100),
                       bpmText(fastest->bpm100));
}

std::string beatsText(const AnalysisResult& analysis) {
    const std::vector<Beat>& beats = analysis.beats;
    if (beats.empty()) return "none found";
    std::string text =
        fmt::format("{}, first at {}", counted(static_cast<std::int64_t>(beats.size()), "beat"),
                    clockTime(analysis.secondsAt(beats.front().frame)));
    const auto downbeat =
        std::find_if(beats.begin(), beats.end(), [](const Beat& b) { return b.isDownbeat(); });
    if (downbeat == beats.end()) return text;
    const auto bars =
        std::count_if(beats.begin(), beats.end(), [](const Beat& b) { return b.isDownbeat(); });
    return text + fmt::format("; {}, first at {}", counted(bars, "bar"),
                              clockTime(analysis.secondsAt(downbeat->frame)));
}

std::string keyDetails(const KeyRanking& ranking) {
    const KeyName best(ranking.keys[0]);
    const KeyName next(ranking.keys[1]);
    return fmt::format("{}, {}, {}, number {}; next {} ({}), {:.1f} % behind", best.musical(),
                       best.camelot(), best.openKey(), best.number(), next.musical(),
                       next.camelot(), ranking.runnerUpDistance() * 100.0);
}

std::string wavesText(const AnalysisResult& analysis) {
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
    if (!report.analysis.key) return "no key found";
    const KeyName best(report.analysis.key->keys[0]);
    return best.musical() + "  " + best.camelot();
}

std::string textSummary(const TrackReport& report) {
    const AnalysisResult& analysis = report.analysis;
    const AnalysisOptions& options = report.options;
    std::string text = displayName(report.path) + "\n";
    text += line("audio", formatText(report));
    text += line("length", lengthText(analysis));
    if (options.tempo != TempoMode::off) {
        text += line("tempo", tempoText(report) + tempoRange(analysis.beats));
        text += line("beats", beatsText(analysis));
    }
    if (options.wantsKey)
        text += line("key", analysis.key ? keyDetails(*analysis.key) : keyText(report));
    text += line("waves", wavesText(analysis));
    return text;
}

}  // namespace app
