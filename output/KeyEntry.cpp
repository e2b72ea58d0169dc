// SPDX-License-Identifier: MIT
#include "output/KeyEntry.h"

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

/** The first keys of the ranking, their scores as shares of the best one's. */
std::string rankingText(const beatatlas::track::KeyRanking& key) {
    std::string text;
    for (std::size_t i = 0; i < kRanksShown; ++i) {
        text += fmt::format("{}{} {:.1f} %", i == 0 ? "" : ", ", KeyName(key.keys[i]).musical(),
                            100.0 * key.scores[i] / key.scores[0]);
    }
    return text;
}

Json bufferKeyJson(const KeyReport& report) {
    if (!report.bufferKey) return nullptr;
    return keyNameJson(*report.bufferKey);
}

}  // namespace

std::string KeyEntry::text() const {
    const auto& session = report_.analysis.key;
    std::string text = trackFileText(report_, report_.analysis.frames);
    text += textLine("pitch", pitchText(report_));
    text += textLine("key", report_.bufferKey ? keyNames(*report_.bufferKey) : kNoKeyText);
    text += textLine("session", keyDetails(session));
    if (session) text += textLine("ranking", rankingText(*session));
    return text;
}

Json KeyEntry::json() const {
    Json track = trackFileJson(report_, report_.analysis.frames);
    track["pitch"] = report_.pitchHz ? Json(*report_.pitchHz) : Json(nullptr);
    track["pitchGiven"] = report_.wanted.pitchHz.has_value();
    track["mode"] = report_.wanted.mode;
    track["key"] = bufferKeyJson(report_);
    track["session"] = keyJson(report_.analysis.key);
    return track;
}

}  // namespace output
