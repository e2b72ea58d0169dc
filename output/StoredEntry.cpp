// SPDX-License-Identifier: MIT
#include "output/StoredEntry.h"

#include <ctime>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "output/fileWarnings.h"
#include "output/textFormat.h"
#include "output/textParts.h"
#include "output/textSummary.h"
#include "output/trackJson.h"

namespace output {

namespace {

/** "2026-01-31 17:05 UTC". */
std::string dateText(std::int64_t secondsSince1970) {
    const auto seconds = static_cast<std::time_t>(secondsSince1970);
    std::tm date{};
    if (gmtime_r(&seconds, &date) == nullptr) return "an unknown date";
    return fmt::format("{}-{:02}-{:02} {:02}:{:02} UTC", date.tm_year + 1900, date.tm_mon + 1,
                       date.tm_mday, date.tm_hour, date.tm_min);
}

}  // namespace

/** What was done by hand, and what was found. */
std::string StoredEntry::handText() const {
    const std::string tempo = note_.foundBpm ? bpmText(*note_.foundBpm) + " BPM" : "no tempo";
    const std::string key =
        note_.foundKey ? shortKeyName(*note_.foundKey, report_.keyNotation) : "no key";
    return fmt::format("{}; found: {}, {}", correctionsText(report_), tempo, key);
}

std::string StoredEntry::text() const {
    std::string text = textSummary(report_);
    if (!report_.corrections.empty()) text += textLine("by hand", handText());
    text += textLine("analysed", fmt::format("{} by {}, {}", dateText(note_.madeAt),
                                             note_.toolVersion, note_.parameters));
    for (const std::string& warning : fileWarnings(report_)) text += textLine("warning", warning);
    if (note_.isGone) text += textLine("gone", "the file is no longer there");
    return text;
}

nlohmann::ordered_json StoredEntry::json() const {
    return trackJson(report_, withWaves_);
}

}  // namespace output
