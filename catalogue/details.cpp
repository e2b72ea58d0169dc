// SPDX-License-Identifier: MIT
#include "catalogue/details.h"

#include <array>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "catalogue/CatalogueError.h"

namespace catalogue {

namespace {

using Json = nlohmann::ordered_json;
using beatatlas::track::Key;
using beatatlas::track::SessionKey;
using beatatlas::track::TempoJudgement;
using beatatlas::track::TrackResult;

/** JSON has no infinity. */
Json levelJson(float level) {
    return std::isinf(level) ? Json("infinite") : Json(level);
}
float levelOf(const Json& json) {
    return json.is_string() ? std::numeric_limits<float>::infinity() : json.get<float>();
}

Json fileJson(const base::TrackSource& file) {
    Json gaps = Json::array();
    for (const base::Gap& gap : file.gaps) gaps.push_back({gap.start, gap.length});
    const base::Overload& overload = file.overload;
    return {{"partial", file.isCutOff},
            {"damagedPackets", file.damagedPackets},
            {"repeatedPackets", file.repeatedPackets},
            {"gaps", std::move(gaps)},
            {"lacksEnd", file.lacksEnd},
            {"droppedFrames", file.droppedFrames},
            {"samples", overload.heard},
            {"clipped", overload.clipped},
            {"peak", levelJson(overload.peak)},
            {"notNumbers", overload.notNumbers}};
}

void readFile(const Json& json, base::TrackSource& file) {
    file.isCutOff = json.at("partial").get<bool>();
    file.damagedPackets = json.at("damagedPackets").get<std::int64_t>();
    file.repeatedPackets = json.at("repeatedPackets").get<std::int64_t>();
    for (const Json& gap : json.at("gaps"))
        file.gaps.push_back({gap.at(0).get<double>(), gap.at(1).get<double>()});
    file.lacksEnd = json.at("lacksEnd").get<bool>();
    file.droppedFrames = json.at("droppedFrames").get<std::int64_t>();
    file.overload.heard = json.at("samples").get<std::int64_t>();
    file.overload.clipped = json.at("clipped").get<std::int64_t>();
    file.overload.peak = levelOf(json.at("peak"));
    file.overload.notNumbers = json.at("notNumbers").get<std::int64_t>();
}

void addJudgement(Json& json, const TempoJudgement& judgement) {
    json["stretches"] = Json::array();
    for (const auto& stretch : judgement.stretches)
        json["stretches"].push_back({stretch.fromSeconds, stretch.toSeconds, stretch.bpm});
    json["readings"] = Json::array();
    for (const auto& reading : judgement.readings)
        json["readings"].push_back(
            {static_cast<int>(reading.kind), reading.bpm, reading.share, reading.shiftBeats});
}

void readJudgement(const Json& json, TempoJudgement& judgement) {
    for (const Json& stretch : json.at("stretches"))
        judgement.stretches.push_back({stretch.at(0).get<double>(), stretch.at(1).get<double>(),
                                       stretch.at(2).get<double>()});
    for (const Json& reading : json.at("readings"))
        judgement.readings.push_back(
            {static_cast<beatatlas::track::ReadingKind>(reading.at(0).get<int>()),
             reading.at(1).get<double>(), reading.at(2).get<double>(),
             reading.at(3).get<double>()});
}

Json keyJson(const Key& key) {
    Json ranking = Json::array();
    for (const auto& candidate : key.ranking)
        ranking.push_back({candidate.key, candidate.score, candidate.probability});
    Json segments = Json::array();
    for (const auto& segment : key.segments)
        segments.push_back(
            {segment.fromSeconds, segment.toSeconds, segment.key, segment.confidence});
    return {{"ranking", std::move(ranking)},
            {"segments", std::move(segments)},
            {"chroma", key.chroma},
            {"tuningHz", key.tuningHz}};
}

/** A key's number, which names of keys are looked up by. */
int keyNumber(const Json& json) {
    const int number = json.get<int>();
    if (number < 0 || number >= beatatlas::track::kKeyCount)
        throw DamagedRecord("a key in the catalogue is damaged");
    return number;
}

void readKey(const Json& json, Key& key) {
    const Json& ranking = json.at("ranking");
    for (std::size_t i = 0; i < key.ranking.size(); ++i)
        key.ranking.at(i) = {keyNumber(ranking.at(i).at(0)), ranking.at(i).at(1).get<double>(),
                             ranking.at(i).at(2).get<double>()};
    for (const Json& segment : json.at("segments"))
        key.segments.push_back({segment.at(0).get<double>(), segment.at(1).get<double>(),
                                keyNumber(segment.at(2)), segment.at(3).get<double>()});
    json.at("chroma").get_to(key.chroma);
    key.tuningHz = json.at("tuningHz").get<double>();
}

Json sessionKeyJson(const SessionKey& key) {
    return {{"keys", key.keys},
            {"scores", key.scores},
            {"noteCounts", key.noteCounts},
            {"noteShares", key.noteShares}};
}

SessionKey sessionKeyOf(const Json& json) {
    SessionKey key;
    const Json& keys = json.at("keys");
    for (std::size_t i = 0; i < key.keys.size(); ++i) key.keys.at(i) = keyNumber(keys.at(i));
    json.at("scores").get_to(key.scores);
    json.at("noteCounts").get_to(key.noteCounts);
    json.at("noteShares").get_to(key.noteShares);
    return key;
}

}  // namespace

std::string detailsText(const base::TrackSource& file, const TrackResult& result) {
    Json json = {{"file", fileJson(file)}};
    if (result.judgement) addJudgement(json, *result.judgement);
    if (result.key) json["key"] = keyJson(*result.key);
    if (result.sessionKey) json["sessionKey"] = sessionKeyJson(*result.sessionKey);
    return json.dump();
}

void readDetails(const std::string& text, base::TrackSource& file, TrackResult& result) {
    try {
        const Json json = Json::parse(text);
        readFile(json.at("file"), file);
        if (result.judgement) readJudgement(json, *result.judgement);
        if (result.key) readKey(json.at("key"), *result.key);
        if (json.contains("sessionKey")) result.sessionKey = sessionKeyOf(json["sessionKey"]);
    } catch (const Json::exception&) {
        throw DamagedRecord("the details of a result in the catalogue are damaged");
    }
}

}  // namespace catalogue
