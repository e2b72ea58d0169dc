// SPDX-License-Identifier: MIT
#include "output/trackJson.h"

#include <nlohmann/json.hpp>

#include "output/jsonParts.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kZoomPointsPerSecond = 150;

const char* tempoModeName(beatatlas::track::TempoMode mode) {
    switch (mode) {
    case beatatlas::track::TempoMode::constant:
        return "constant";
    case beatatlas::track::TempoMode::varied:
        return "varied";
    case beatatlas::track::TempoMode::simple:
        return "simple";
    case beatatlas::track::TempoMode::off:
        break;
    }
    return "off";
}

Json beatJson(const beatatlas::track::TrackResult& analysis, const beatatlas::track::Beat& beat) {
    return {{"frame", beat.frame},
            {"seconds", analysis.secondsAt(beat.frame)},
            {"beat", beat.numberInBar},
            {"bpm", beat.bpm}};
}

Json beatsJson(const beatatlas::track::TrackResult& analysis) {
    Json beats = Json::array();
    for (const beatatlas::track::Beat& beat : analysis.beats)
        beats.push_back(beatJson(analysis, beat));
    return beats;
}

Json tempoJson(const TrackReport& report) {
    Json tempo = {{"mode", tempoModeName(report.options.tempo)}};
    const auto& bpm = report.analysis.bpm;
    tempo["bpm"] = bpm ? Json(*bpm) : Json(nullptr);
    return tempo;
}

Json colorsJson(const std::vector<beatatlas::track::WavePoint>& wave) {
    Json colors = Json::array();
    for (const beatatlas::track::WavePoint& point : wave) colors.push_back(point.color);
    return colors;
}

template <class Level>
Json waveJson(const std::vector<beatatlas::track::WavePoint>& wave) {
    Json levels = Json::array();
    for (const beatatlas::track::WavePoint& point : wave)
        levels.push_back(static_cast<Level>(point.level));
    return {{"levels", std::move(levels)}, {"colors", colorsJson(wave)}};
}

Json wavesJson(const beatatlas::track::TrackResult& analysis) {
    Json zoom = {{"pointsPerSecond", kZoomPointsPerSecond}};
    zoom.update(waveJson<int>(analysis.zoomWave));
    return {{"loud", waveJson<double>(analysis.loudWave)},
            {"dots", waveJson<double>(analysis.dotsWave)},
            {"zoom", std::move(zoom)}};
}

}  // namespace

Json trackJson(const TrackReport& report, bool withWaves) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    Json track = trackFileJson(report, analysis.frames);
    if (report.options.tempo != beatatlas::track::TempoMode::off) {
        track["tempo"] = tempoJson(report);
        track["beats"] = beatsJson(analysis);
    }
    if (report.options.wantsKey) track["key"] = keyJson(analysis.key);
    if (withWaves) track["waves"] = wavesJson(analysis);
    return track;
}

}  // namespace output
