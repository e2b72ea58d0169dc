// SPDX-License-Identifier: MIT
#include "report/trackJson.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "io/displayName.h"
#include "report/KeyName.h"

namespace app {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kZoomPointsPerSecond = 150;
constexpr std::array<const char*, kPitchClassCount> kNoteNames = {
    "A", "Bb", "B", "C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#"};

std::string hexadecimal(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) text += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return text;
}

/** JSON is UTF-8, file names need not be: then the name is shown with escapes, and its bytes are told beside it. */
Json nameJson(const std::string& path) {
    if (isUtf8(path)) return {{"file", path}};
    return {{"file", displayName(path)}, {"fileBytes", hexadecimal(path)}};
}

/** The decimal number that a person would write for so many hundredths. */
double bpmOf(int bpm100) {
    return bpm100 / 100.0;
}

const char* tempoModeName(TempoMode mode) {
    switch (mode) {
    case TempoMode::constant:
        return "constant";
    case TempoMode::varied:
        return "varied";
    case TempoMode::simple:
        return "simple";
    case TempoMode::off:
        break;
    }
    return "off";
}

Json audioJson(const TrackFormat& format) {
    return {{"container", format.container},
            {"codec", format.codec},
            {"channels", format.channels},
            {"sampleRate", format.trackRate}};
}

Json beatJson(const AnalysisResult& analysis, const Beat& beat) {
    return {{"frame", beat.frame},
            {"seconds", analysis.secondsAt(beat.frame)},
            {"beat", beat.numberInBar},
            {"bpm", bpmOf(beat.bpm100)}};
}

Json beatsJson(const AnalysisResult& analysis) {
    Json beats = Json::array();
    for (const Beat& beat : analysis.beats) beats.push_back(beatJson(analysis, beat));
    return beats;
}

Json tempoJson(const TrackReport& report) {
    Json tempo = {{"mode", tempoModeName(report.options.tempo)}};
    const auto& bpm100 = report.analysis.bpm100;
    tempo["bpm"] = bpm100 ? Json(bpmOf(*bpm100)) : Json(nullptr);
    return tempo;
}

Json keyNameJson(int number) {
    const KeyName key(number);
    return {{"number", key.number()},
            {"name", key.musical()},
            {"camelot", key.camelot()},
            {"openKey", key.openKey()}};
}

Json rankingJson(const KeyRanking& key) {
    Json ranking = Json::array();
    for (std::size_t i = 0; i < key.keys.size(); ++i) {
        Json entry = keyNameJson(key.keys[i]);
        entry["score"] = key.scores[i];
        ranking.push_back(std::move(entry));
    }
    return ranking;
}

Json notesJson(const KeyRanking& key) {
    Json notes = Json::array();
    for (std::size_t i = 0; i < kNoteNames.size(); ++i) {
        notes.push_back(
            {{"note", kNoteNames[i]}, {"count", key.noteCounts[i]}, {"share", key.noteShares[i]}});
    }
    return notes;
}

Json keyJson(const std::optional<KeyRanking>& key) {
    if (!key) return nullptr;
    Json json = keyNameJson(key->keys[0]);
    json["runnerUpDistance"] = key->runnerUpDistance();
    json["ranking"] = rankingJson(*key);
    json["notes"] = notesJson(*key);
    return json;
}

Json colorsJson(const std::vector<WavePoint>& wave) {
    Json colors = Json::array();
    for (const WavePoint& point : wave) colors.push_back(point.color);
    return colors;
}

template <class Level>
Json waveJson(const std::vector<WavePoint>& wave) {
    Json levels = Json::array();
    for (const WavePoint& point : wave) levels.push_back(static_cast<Level>(point.level));
    return {{"levels", std::move(levels)}, {"colors", colorsJson(wave)}};
}

Json wavesJson(const AnalysisResult& analysis) {
    Json zoom = {{"pointsPerSecond", kZoomPointsPerSecond}};
    zoom.update(waveJson<int>(analysis.zoomWave));
    return {{"loud", waveJson<double>(analysis.loudWave)},
            {"dots", waveJson<double>(analysis.dotsWave)},
            {"zoom", std::move(zoom)}};
}

}  // namespace

Json trackJson(const TrackReport& report, bool withWaves) {
    const AnalysisResult& analysis = report.analysis;
    Json track = nameJson(report.path);
    track["audio"] = audioJson(report.format);
    track["partial"] = report.isCutOff;
    track["damagedPackets"] = report.damagedPackets;
    track["sampleRate"] = analysis.rate;
    track["frames"] = analysis.frames;
    track["seconds"] = analysis.seconds();
    if (report.options.tempo != TempoMode::off) {
        track["tempo"] = tempoJson(report);
        track["beats"] = beatsJson(analysis);
    }
    if (report.options.wantsKey) track["key"] = keyJson(analysis.key);
    if (withWaves) track["waves"] = wavesJson(analysis);
    return track;
}

Json failureJson(const std::string& path, const std::string& reason) {
    Json track = nameJson(path);
    track["error"] = reason;
    return track;
}

}  // namespace app
