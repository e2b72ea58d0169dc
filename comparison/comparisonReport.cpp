// SPDX-License-Identifier: MIT
#include "comparison/comparisonReport.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/KeyName.h"
#include "output/jsonParts.h"
#include "output/textFormat.h"
#include "output/textParts.h"

namespace comparison {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 2;

const char* jsonName(Reading reading) {
    switch (reading) {
    case Reading::twice:
        return "double";
    case Reading::half:
        return "half";
    case Reading::otherHalf:
        return "otherHalf";
    case Reading::shifted:
        return "shifted";
    case Reading::same:
        break;
    }
    return "same";
}

const char* spokenName(Reading reading) {
    switch (reading) {
    case Reading::twice:
        return "B doubled";
    case Reading::half:
        return "B halved";
    case Reading::otherHalf:
        return "B halved, the other beats";
    case Reading::shifted:
        return "B shifted by half a beat";
    case Reading::same:
        break;
    }
    return "B as it is";
}

std::string tempoOf(const BeatSheet& sheet) {
    return sheet.bpm ? output::bpmText(*sheet.bpm) : "none";
}

std::string keyOf(const BeatSheet& sheet) {
    return sheet.key ? output::KeyName(*sheet.key).musical() : "none";
}

std::string agreementText(const Agreement& agreement) {
    return fmt::format("{:.3f} within 70 ms, {:.3f} within 20 ms", agreement.within70,
                       agreement.within20);
}

std::string latenessText(double seconds) {
    const double milliseconds = seconds * 1000.0;
    return fmt::format("A lies {:.1f} ms {} B, in the middle", std::abs(milliseconds),
                       milliseconds < 0.0 ? "before" : "behind");
}

std::string beatsText(const Comparison& found) {
    if (!found.beats) return output::textLine("beats", "none");
    std::string text;
    for (std::size_t i = 0; i < kReadings.size(); ++i)
        text += output::textLine(i == 0 ? "beats" : "",
                                 fmt::format("{:<25}  {}", spokenName(kReadings.at(i)),
                                             agreementText(found.beats->at(i))));
    if (found.lateness) text += output::textLine("offset", latenessText(*found.lateness));
    return text;
}

std::string barsText(const Comparison& found) {
    return output::textLine("bars", found.downbeats ? "downbeats " + agreementText(*found.downbeats)
                                                    : "not compared");
}

std::string keyText(const BeatSheet& a, const BeatSheet& b, const Comparison& found) {
    if (!found.key) return "A " + keyOf(a) + ", B " + keyOf(b);
    return fmt::format("A {}, B {}: {}, {:.1f}", keyOf(a), keyOf(b), found.key->name,
                       found.key->score);
}

Json agreementJson(const Agreement& agreement) {
    return {{"within70ms", agreement.within70}, {"within20ms", agreement.within20}};
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json sideJson(const Side& side) {
    Json json = output::nameJson(side.path);
    json["bpm"] = orNull(side.sheet.bpm);
    json["beats"] = side.sheet.beats.size();
    json["downbeats"] = std::count_if(side.sheet.beats.begin(), side.sheet.beats.end(),
                                      [](const SheetBeat& beat) { return beat.isDownbeat(); });
    json["key"] = side.sheet.key ? output::keyNameJson(*side.sheet.key) : Json(nullptr);
    return json;
}

Json beatsJson(const Comparison& found) {
    if (!found.beats) return nullptr;
    Json beats;
    for (std::size_t i = 0; i < kReadings.size(); ++i)
        beats[jsonName(kReadings.at(i))] = agreementJson(found.beats->at(i));
    return beats;
}

Json keyJson(const Comparison& found) {
    if (!found.key) return nullptr;
    return {{"relation", found.key->name}, {"score", found.key->score}};
}

}  // namespace

std::string comparisonText(const Side& a, const Side& b) {
    const Comparison found = compareSheets(a.sheet, b.sheet);
    std::string tempo = "A " + tempoOf(a.sheet) + ", B " + tempoOf(b.sheet);
    if (found.tempoRatio) tempo += fmt::format(" BPM: {:.4f} times B", *found.tempoRatio);
    std::string text = base::displayName(a.path) + "\n" + base::displayName(b.path) + "\n" +
                       output::textLine("tempo", tempo) + beatsText(found);
    if (found.likeliest() != Reading::same)
        text += output::textLine("best", spokenName(found.likeliest()));
    return text + barsText(found) + output::textLine("key", keyText(a.sheet, b.sheet, found));
}

std::string comparisonJson(const Side& a, const Side& b, const std::string& toolVersion) {
    const Comparison found = compareSheets(a.sheet, b.sheet);
    const Json document = {
        {"format", "beatatlas.comparison"},
        {"version", kFormatVersion},
        {"tool", toolVersion},
        {"a", sideJson(a)},
        {"b", sideJson(b)},
        {"tempoRatio", orNull(found.tempoRatio)},
        {"beats", beatsJson(found)},
        {"likeliest", found.beats ? Json(jsonName(found.likeliest())) : Json(nullptr)},
        {"latenessMs", found.lateness ? Json(*found.lateness * 1000.0) : Json(nullptr)},
        {"downbeats", found.downbeats ? agreementJson(*found.downbeats) : Json(nullptr)},
        {"key", keyJson(found)}};
    return document.dump() + "\n";
}

}  // namespace comparison
