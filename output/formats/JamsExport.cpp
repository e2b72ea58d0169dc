// SPDX-License-Identifier: MIT
#include "output/formats/JamsExport.h"

#include <algorithm>
#include <initializer_list>

#include <nlohmann/json.hpp>

#include "output/formats/sections.h"
#include "output/formats/trackNames.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

// The version of the format whose fields these are.
constexpr const char* kJamsVersion = "0.3.4";

Json observation(double time, double duration, Json value, Json confidence) {
    return {{"time", time},
            {"duration", duration},
            {"value", std::move(value)},
            {"confidence", std::move(confidence)}};
}

/** From a position that may lie before the beginning, where JAMS has no time. Nothing is added of
 *  what ends there. */
void addInterval(Json& data, double from, double to, const Json& value, const Json& confidence) {
    const double begin = std::max(0.0, from);
    if (begin < to) data.push_back(observation(begin, to - begin, value, confidence));
}

Json beatData(const beatatlas::track::TrackResult& analysis) {
    const Json confidence =
        analysis.judgement ? Json(analysis.judgement->confidence.phase) : Json(nullptr);
    Json data = Json::array();
    for (const beatatlas::track::Beat& beat : analysis.beats) {
        if (beat.seconds >= 0.0)
            data.push_back(observation(beat.seconds, 0.0, beat.numberInBar, confidence));
    }
    return data;
}

/** In this namespace confidence has to be a number: where none is known the tempo, the only one,
 *  has all of it. */
Json tempoData(const TrackReport& report) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    Json data = Json::array();
    if (!analysis.bpm) return data;
    const double start = report.startSeconds();
    if (!analysis.judgement) {
        addInterval(data, start, start + analysis.seconds(), *analysis.bpm, 1.0);
        return data;
    }
    const double confidence =
        analysis.judgement->confidence.tempo * analysis.judgement->confidence.level;
    for (const beatatlas::track::TempoStretch& stretch : analysis.judgement->stretches)
        addInterval(data, stretch.fromSeconds, stretch.toSeconds, stretch.bpm, confidence);
    return data;
}

/** "F#:minor". */
std::string modeName(int key) {
    std::string name = KeyName(key).musical();
    std::replace(name.begin(), name.end(), ' ', ':');
    return name;
}

Json keyData(const beatatlas::track::TrackResult& analysis) {
    Json data = Json::array();
    if (!analysis.key) return data;
    for (const beatatlas::track::KeySegment& segment : analysis.key->segments)
        addInterval(data, segment.fromSeconds, segment.toSeconds, modeName(segment.key),
                    segment.confidence);
    return data;
}

Json sectionData(const TrackReport& report) {
    Json data = Json::array();
    for (const Section& section : sectionsOf(report))
        addInterval(data, section.fromSeconds, section.toSeconds,
                    sectionTitle(section, report.keyNotation), nullptr);
    return data;
}

Json fileMetadata(const TrackReport& report) {
    return {{"artist", artistOf(report)},
            {"title", titleOf(report)},
            {"release", ""},
            {"duration", report.analysis.seconds()},
            {"identifiers", Json::object()},
            {"jams_version", kJamsVersion}};
}

/** What an annotation says, of which corrections may be a part. */
enum class Subject { tempo, key };

std::string sourceOf(const TrackReport& report, std::initializer_list<Subject> subjects) {
    const auto isOfThem = [&](const CorrectionNote& correction) {
        const Subject subject = correction.isOfKey() ? Subject::key : Subject::tempo;
        return std::find(subjects.begin(), subjects.end(), subject) != subjects.end();
    };
    const bool isCorrected =
        std::any_of(report.corrections.begin(), report.corrections.end(), isOfThem);
    return isCorrected ? "program, corrected by hand" : "program";
}

Json annotation(const char* name, Json data, const TrackReport& report, const std::string& source,
                const std::string& toolVersion) {
    const double end = report.startSeconds() + report.analysis.seconds();
    return {{"namespace", name},
            {"time", 0.0},
            {"duration", std::max(0.0, end)},
            {"annotation_metadata",
             {{"annotation_tools", "beatatlas " + toolVersion},
              {"data_source", source},
              {"version", toolVersion}}},
            {"data", std::move(data)},
            {"sandbox", Json::object()}};
}

}  // namespace

void JamsExport::add(const TrackReport& report, const Peaks*) {
    Json annotations = Json::array();
    const auto annotate = [&](const char* name, Json data,
                              std::initializer_list<Subject> subjects) {
        annotations.push_back(
            annotation(name, std::move(data), report, sourceOf(report, subjects), toolVersion_));
    };
    if (report.options.tempo != beatatlas::track::TempoMode::off) {
        annotate("beat", beatData(report.analysis), {Subject::tempo});
        annotate("tempo", tempoData(report), {Subject::tempo});
    }
    if (report.options.wantsKey) annotate("key_mode", keyData(report.analysis), {Subject::key});
    annotate("segment_open", sectionData(report), {Subject::tempo, Subject::key});
    const Json document = {{"file_metadata", fileMetadata(report)},
                           {"annotations", std::move(annotations)},
                           {"sandbox", Json::object()}};
    write_(document.dump(2) + "\n");
}

}  // namespace output
