// SPDX-License-Identifier: MIT
#include "output/formats/TracksCsv.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/formats/csvText.h"
#include "output/formats/trackNames.h"
#include "output/textFormat.h"

namespace output {

namespace {

using beatatlas::track::Beat;
using Fields = std::vector<std::string>;

Fields columns() {
    return {"file",    "artist",         "title",          "seconds",
            "bpm",     "steady",         "bpm_confidence", "beats",
            "bars",    "first_beat",     "first_downbeat", "key",
            "camelot", "key_confidence", "tuning_hz",      "corrected",
            "error"};
}

void append(Fields& fields, const Fields& more) {
    fields.insert(fields.end(), more.begin(), more.end());
}

Fields tempoFields(const beatatlas::track::TrackResult& analysis) {
    const std::string bpm = analysis.bpm ? bpmText(*analysis.bpm) : "";
    if (!analysis.judgement) return {bpm, "", ""};
    const BA_TrackConfidence& confidence = analysis.judgement->confidence;
    return {bpm, analysis.judgement->isSteady ? "yes" : "no",
            fmt::format("{:.3f}", confidence.tempo * confidence.level)};
}

Fields beatFields(const std::vector<Beat>& beats) {
    const auto isDownbeat = [](const Beat& beat) { return beat.isDownbeat(); };
    const auto downbeat = std::find_if(beats.begin(), beats.end(), isDownbeat);
    return {std::to_string(beats.size()),
            std::to_string(std::count_if(beats.begin(), beats.end(), isDownbeat)),
            beats.empty() ? "" : csvSeconds(beats.front().seconds),
            downbeat == beats.end() ? "" : csvSeconds(downbeat->seconds)};
}

Fields keyFields(const TrackReport& report) {
    const auto& key = report.analysis.key;
    if (!key) return {"", "", "", ""};
    const KeyName name(key->best());
    return {name.in(report.keyNotation.value_or(KeyNotation::standard)), name.camelot(),
            fmt::format("{:.3f}", key->confidence), fmt::format("{:.2f}", key->tuningHz)};
}

}  // namespace

void TracksCsv::begin() {
    write_(csvLine(columns()));
}

void TracksCsv::add(const TrackReport& report, const Peaks*) {
    Fields fields = {base::displayName(report.path), artistOf(report), titleOf(report),
                     csvSeconds(report.analysis.seconds())};
    append(fields, tempoFields(report.analysis));
    append(fields, beatFields(report.analysis.beats));
    append(fields, keyFields(report));
    append(fields, {report.corrections.empty() ? "no" : "yes", ""});
    write_(csvLine(fields));
}

void TracksCsv::addFailure(const std::string& path, const std::string& reason) {
    Fields fields(columns().size());
    fields.front() = base::displayName(path);
    fields.back() = reason;
    write_(csvLine(fields));
}

}  // namespace output
