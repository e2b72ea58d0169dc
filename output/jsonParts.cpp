// SPDX-License-Identifier: MIT
#include "output/jsonParts.h"

#include <array>
#include <cmath>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/KeyName.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, beatatlas::track::kPitchClassCount> kNoteNames = {
    "A", "Bb", "B", "C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#"};

std::string hexadecimal(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) text += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return text;
}

Json audioJson(const base::TrackFormat& format) {
    return {{"container", format.container},
            {"codec", format.codec},
            {"channels", format.channels},
            {"sampleRate", format.trackRate}};
}

Json gapsJson(const std::vector<base::Gap>& gaps) {
    Json json = Json::array();
    for (const base::Gap& gap : gaps)
        json.push_back({{"start", gap.start}, {"length", gap.length}});
    return json;
}

/** JSON has no infinity: the peak is then null. */
Json overloadJson(const base::Overload& overload) {
    return {{"samples", overload.heard},
            {"clipped", overload.clipped},
            {"peak", std::isfinite(overload.peak) ? Json(overload.peak) : Json(nullptr)},
            {"notNumbers", overload.notNumbers},
            {"tooLoud", overload.isTooLoud()}};
}

Json originJson(const base::TrackSource& file, const TimeOrigin& origin) {
    return {{"at", origin.at == TimeOrigin::At::file ? "file" : "music"},
            {"offsetMs", origin.offsetMs},
            {"droppedFrames", file.droppedFrames},
            {"droppedSeconds", file.droppedSeconds()}};
}

Json candidatesJson(const beatatlas::track::Key& key) {
    Json ranking = Json::array();
    for (const beatatlas::track::KeyCandidate& candidate : key.ranking) {
        Json entry = keyNameJson(candidate.key);
        entry["score"] = candidate.score;
        entry["probability"] = candidate.probability;
        ranking.push_back(std::move(entry));
    }
    return ranking;
}

Json segmentsJson(const beatatlas::track::Key& key) {
    Json segments = Json::array();
    for (const beatatlas::track::KeySegment& segment : key.segments) {
        Json entry = {{"from", segment.fromSeconds}, {"to", segment.toSeconds}};
        entry.update(keyNameJson(segment.key));
        entry["confidence"] = segment.confidence;
        segments.push_back(std::move(entry));
    }
    return segments;
}

Json chromaJson(const beatatlas::track::Key& key) {
    Json chroma = Json::array();
    for (std::size_t i = 0; i < kNoteNames.size(); ++i)
        chroma.push_back({{"note", kNoteNames[i]}, {"share", key.chroma[i]}});
    return chroma;
}

Json rankingJson(const beatatlas::track::SessionKey& key) {
    Json ranking = Json::array();
    for (std::size_t i = 0; i < key.keys.size(); ++i) {
        Json entry = keyNameJson(key.keys[i]);
        entry["score"] = key.scores[i];
        ranking.push_back(std::move(entry));
    }
    return ranking;
}

Json notesJson(const beatatlas::track::SessionKey& key) {
    Json notes = Json::array();
    for (std::size_t i = 0; i < kNoteNames.size(); ++i) {
        notes.push_back(
            {{"note", kNoteNames[i]}, {"count", key.noteCounts[i]}, {"share", key.noteShares[i]}});
    }
    return notes;
}

}  // namespace

Json nameJson(const std::string& path) {
    if (base::isUtf8(path)) return {{"file", path}};
    return {{"file", base::displayName(path)}, {"fileBytes", hexadecimal(path)}};
}

Json keyNameJson(int number) {
    const KeyName key(number);
    return {{"number", key.number()},   {"name", key.musical()},    {"sharps", key.withSharps()},
            {"flats", key.withFlats()}, {"camelot", key.camelot()}, {"openKey", key.openKey()},
            {"german", key.german()},   {"solfege", key.solfege()}};
}

Json keyJson(const std::optional<beatatlas::track::Key>& key) {
    if (!key) return nullptr;
    Json json = keyNameJson(key->best());
    json["confidence"] = key->confidence;
    json["ranking"] = candidatesJson(*key);
    json["segments"] = segmentsJson(*key);
    json["chroma"] = chromaJson(*key);
    json["tuning"] = {{"cents", key->tuningCents}, {"hz", key->tuningHz}};
    return json;
}

Json sessionKeyJson(const std::optional<beatatlas::track::SessionKey>& key) {
    if (!key) return nullptr;
    Json json = keyNameJson(key->keys[0]);
    json["runnerUpDistance"] = key->runnerUpDistance();
    json["ranking"] = rankingJson(*key);
    json["notes"] = notesJson(*key);
    return json;
}

Json trackFileJson(const base::TrackSource& file, std::int64_t frames, const TimeOrigin& origin) {
    Json track = nameJson(file.path);
    track["audio"] = audioJson(file.format);
    track["partial"] = file.isCutOff;
    track["damagedPackets"] = file.damagedPackets;
    track["repeatedPackets"] = file.repeatedPackets;
    track["gaps"] = gapsJson(file.gaps);
    track["lacksEnd"] = file.lacksEnd;
    track["formatChanges"] = file.format.changes;
    if (file.overload.isAny()) track["overload"] = overloadJson(file.overload);
    track["origin"] = originJson(file, origin);
    track["sampleRate"] = file.format.sessionRate;
    track["frames"] = frames;
    track["seconds"] = static_cast<double>(frames) / file.format.sessionRate;
    return track;
}

Json failureJson(const std::string& path, const std::string& reason) {
    Json track = nameJson(path);
    track["error"] = reason;
    return track;
}

}  // namespace output
