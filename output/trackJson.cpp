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
    case beatatlas::track::TempoMode::automatic:
        return "auto";
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

Json beatJson(const beatatlas::track::Beat& beat) {
    return {{"frame", beat.frame},
            {"seconds", beat.seconds},
            {"beat", beat.numberInBar},
            {"bpm", beat.bpm}};
}

Json beatsJson(const beatatlas::track::TrackResult& analysis) {
    Json beats = Json::array();
    for (const beatatlas::track::Beat& beat : analysis.beats) beats.push_back(beatJson(beat));
    return beats;
}

const char* readingName(beatatlas::track::ReadingKind kind) {
    switch (kind) {
    case beatatlas::track::ReadingKind::twice:
        return "double";
    case beatatlas::track::ReadingKind::half:
        return "half";
    case beatatlas::track::ReadingKind::shifted:
        return "shifted";
    case beatatlas::track::ReadingKind::threeToTwo:
        return "3:2";
    case beatatlas::track::ReadingKind::twoToThree:
        return "2:3";
    case beatatlas::track::ReadingKind::other:
        break;
    }
    return "other";
}

void addJudgement(Json& tempo, const beatatlas::track::TempoJudgement& judgement) {
    const BA_TrackConfidence& confidence = judgement.confidence;
    tempo["rawBpm"] = judgement.rawBpm;
    tempo["steady"] = judgement.isSteady;
    tempo["confidence"] = {{"tempo", confidence.tempo},
                           {"level", confidence.level},
                           {"phase", confidence.phase},
                           {"bars", confidence.bars}};
    tempo["stretches"] = Json::array();
    for (const beatatlas::track::TempoStretch& stretch : judgement.stretches)
        tempo["stretches"].push_back(
            {{"from", stretch.fromSeconds}, {"to", stretch.toSeconds}, {"bpm", stretch.bpm}});
    tempo["alternatives"] = Json::array();
    for (const beatatlas::track::Reading& reading : judgement.readings)
        tempo["alternatives"].push_back({{"kind", readingName(reading.kind)},
                                         {"bpm", reading.bpm},
                                         {"shiftBeats", reading.shiftBeats},
                                         {"share", reading.share}});
}

Json tempoJson(const TrackReport& report) {
    Json tempo = {{"mode", tempoModeName(report.options.tempo)}};
    const auto& bpm = report.analysis.bpm;
    tempo["bpm"] = bpm ? Json(*bpm) : Json(nullptr);
    if (report.analysis.judgement) addJudgement(tempo, *report.analysis.judgement);
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

Json correctionsJson(const std::vector<CorrectionNote>& corrections) {
    Json list = Json::array();
    for (const CorrectionNote& correction : corrections)
        list.push_back({{"kind", correction.kind}, {"value", correction.value}});
    return list;
}

}  // namespace

Json trackJson(const TrackReport& report, bool withWaves) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    Json track = trackFileJson(report, analysis.frames, report.origin);
    if (report.options.tempo != beatatlas::track::TempoMode::off) {
        track["tempo"] = tempoJson(report);
        track["beats"] = beatsJson(analysis);
    }
    if (report.options.wantsKey) track["key"] = keyJson(analysis.key);
    if (report.options.wantsSessionKey) track["sessionKey"] = sessionKeyJson(analysis.sessionKey);
    if (withWaves) track["waves"] = wavesJson(analysis);
    if (!report.corrections.empty()) track["corrections"] = correctionsJson(report.corrections);
    return track;
}

}  // namespace output
