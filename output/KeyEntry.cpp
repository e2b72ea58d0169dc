// SPDX-License-Identifier: MIT
#include "output/KeyEntry.h"

#include <cmath>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "output/KeyName.h"
#include "output/jsonParts.h"
#include "output/textParts.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kRanksShown = 5;

std::string pitchText(const KeyReport& report) {
    if (!report.pitchHz) return "no pitch found";
    return fmt::format("A4 = {:g} Hz{}", *report.pitchHz,
                       report.wanted.pitchHz ? ", as given" : "");
}

/** The first keys of the ranking, their scores as fractions of the best one's. */
std::string rankingText(const beatatlas::track::SessionKey& key, KeyNotation notation) {
    std::string text;
    for (std::size_t i = 0; i < kRanksShown; ++i) {
        text += fmt::format("{}{} {:.1f} %", i == 0 ? "" : ", ", KeyName(key.keys[i]).in(notation),
                            100.0 * key.scores[i] / key.scores[0]);
    }
    return text;
}

/** The session's key and the distance to the next one. */
std::string sessionText(const KeyReport& report) {
    const auto& key = report.analysis.sessionKey;
    if (!key) return kNoKeyText;
    return fmt::format("{}; next {}, {:.1f} % behind", keyNames(key->keys[0], report.keyNotation),
                       shortKeyName(key->keys[1], report.keyNotation),
                       key->runnerUpDistance() * 100.0);
}

std::string bufferText(const KeyReport& report) {
    return report.bufferKey ? keyNames(*report.bufferKey, report.keyNotation) : kNoKeyText;
}

std::string tuningText(const beatatlas::track::Key& key) {
    return fmt::format("A4 = {:.2f} Hz, {:.1f} cents {} 440 Hz", key.tuningHz,
                       std::abs(key.tuningCents), key.tuningCents < 0.0 ? "below" : "above");
}

Json bufferKeyJson(const KeyReport& report) {
    if (!report.bufferKey) return nullptr;
    return keyNameJson(*report.bufferKey);
}

}  // namespace

std::string KeyEntry::text() const {
    const beatatlas::track::TrackResult& analysis = report_.analysis;
    std::string text = trackFileText(report_, analysis.frames);
    text += textLine("key", keyDetails(report_));
    if (analysis.key) text += textLine("tuning", tuningText(*analysis.key));
    text += textLine("pitch", pitchText(report_));
    text += textLine("buffer", bufferText(report_));
    text += textLine("session", sessionText(report_));
    if (analysis.sessionKey)
        text +=
            textLine("ranking", rankingText(*analysis.sessionKey,
                                            report_.keyNotation.value_or(KeyNotation::standard)));
    return text;
}

Json KeyEntry::json() const {
    Json track = trackFileJson(report_, report_.analysis.frames, report_.origin);
    track["pitch"] = report_.pitchHz ? Json(*report_.pitchHz) : Json(nullptr);
    track["pitchGiven"] = report_.wanted.pitchHz.has_value();
    track["mode"] = report_.wanted.mode;
    track["key"] = keyJson(report_.analysis.key);
    track["buffer"] = bufferKeyJson(report_);
    track["session"] = sessionKeyJson(report_.analysis.sessionKey);
    return track;
}

}  // namespace output
