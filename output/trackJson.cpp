// SPDX-License-Identifier: MIT
#include "output/trackJson.h"

#include <nlohmann/json.hpp>

#include "output/jsonParts.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kZoomPointsPerSecond = 150;

/** The decimal number that a person would write for so many hundredths. */
double bpmOf(int bpm100) {
    return bpm100 / 100.0;
}

const char* tempoModeName(base::TempoMode mode) {
    switch (mode) {
    case base::TempoMode::constant:
        return "constant";
    case base::TempoMode::varied:
        return "varied";
    case base::TempoMode::simple:
        return "simple";
    case base::TempoMode::off:
        break;
    }
    return "off";
}

Json beatJson(const base::AnalysisResult& analysis, const base::Beat& beat) {
    return {{"frame", beat.frame},
            {"seconds", analysis.secondsAt(beat.frame)},
            {"beat", beat.numberInBar},
            {"bpm", bpmOf(beat.bpm100)}};
}

Json beatsJson(const base::AnalysisResult& analysis) {
    Json beats = Json::array();
    for (const base::Beat& beat : analysis.beats) beats.push_back(beatJson(analysis, beat));
    return beats;
}

Json tempoJson(const TrackReport& report) {
    Json tempo = {{"mode", tempoModeName(report.options.tempo)}};
    const auto& bpm100 = report.analysis.bpm100;
    tempo["bpm"] = bpm100 ? Json(bpmOf(*bpm100)) : Json(nullptr);
    return tempo;
}

Json colorsJson(const std::vector<base::WavePoint>& wave) {
    Json colors = Json::array();
    for (const base::WavePoint& point : wave) colors.push_back(point.color);
    return colors;
}

template <class Level>
Json waveJson(const std::vector<base::WavePoint>& wave) {
    Json levels = Json::array();
    for (const base::WavePoint& point : wave) levels.push_back(static_cast<Level>(point.level));
    return {{"levels", std::move(levels)}, {"colors", colorsJson(wave)}};
}

Json wavesJson(const base::AnalysisResult& analysis) {
    Json zoom = {{"pointsPerSecond", kZoomPointsPerSecond}};
    zoom.update(waveJson<int>(analysis.zoomWave));
    return {{"loud", waveJson<double>(analysis.loudWave)},
            {"dots", waveJson<double>(analysis.dotsWave)},
            {"zoom", std::move(zoom)}};
}

}  // namespace

Json trackJson(const TrackReport& report, bool withWaves) {
    const base::AnalysisResult& analysis = report.analysis;
    Json track = trackFileJson(report, analysis.frames);
    if (report.options.tempo != base::TempoMode::off) {
        track["tempo"] = tempoJson(report);
        track["beats"] = beatsJson(analysis);
    }
    if (report.options.wantsKey) track["key"] = keyJson(analysis.key);
    if (withWaves) track["waves"] = wavesJson(analysis);
    return track;
}

}  // namespace output
