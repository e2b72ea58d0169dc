// SPDX-License-Identifier: MIT
#include "output/TagEntry.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/jsonParts.h"
#include "output/textFormat.h"
#include "output/textParts.h"
#include "output/textSummary.h"

namespace output {

namespace {

using base::TagChange;
using Json = nlohmann::ordered_json;

const char* actionName(TagChange::Kind kind) {
    switch (kind) {
    case TagChange::Kind::added:
        return "added";
    case TagChange::Kind::replaced:
        return "replaced";
    case TagChange::Kind::removed:
        return "removed";
    case TagChange::Kind::kept:
        return "kept";
    case TagChange::Kind::unchanged:
        break;
    }
    return "unchanged";
}

std::string diffLine(char sign, const std::string& field, std::size_t width,
                     const std::string& value) {
    return fmt::format("  {} {:<{}}  {}\n", sign, field, width, base::displayName(value));
}

/** The lines of one field: what goes, what comes, what stays. */
std::string diff(const TagChange& change, std::size_t width) {
    if (change.kind == TagChange::Kind::kept)
        return diffLine('=', change.field, width,
                        change.before + " (kept; --overwrite makes it " + change.after + ")");
    if (change.kind == TagChange::Kind::unchanged)
        return diffLine('=', change.field, width, change.before);
    std::string lines;
    if (change.kind != TagChange::Kind::added)
        lines += diffLine('-', change.field, width, change.before);
    if (change.kind != TagChange::Kind::removed)
        lines += diffLine('+', change.field, width, change.after);
    return lines;
}

Json textOrNull(const std::string& text, bool isThere) {
    return isThere ? Json(utf8Text(text)) : Json(nullptr);
}

Json changeJson(const TagChange& change) {
    const bool hadValue = change.kind != TagChange::Kind::added;
    const bool hasValue = change.kind != TagChange::Kind::removed;
    return {{"field", change.field},
            {"action", actionName(change.kind)},
            {"before", textOrNull(change.before, hadValue)},
            {"found", textOrNull(change.after, hasValue)}};
}

}  // namespace

std::string TagEntry::outcome() const {
    if (report_.isWritten) return "written";
    if (report_.hasWork()) return "not written: --write does it";
    return report_.changes.empty() ? "nothing to write" : "nothing to change";
}

std::string TagEntry::text() const {
    std::string text = base::displayName(report_.path) + "\n";
    if (report_.options.tempo != beatatlas::track::TempoMode::off)
        text += textLine("tempo", tempoText(report_) + tempoRemarks(report_));
    if (report_.options.wantsKey) text += textLine("key", keyDetails(report_));
    text += textLine("tags", outcome());
    std::size_t width = 0;
    for (const TagChange& change : report_.changes) width = std::max(width, change.field.size());
    for (const TagChange& change : report_.changes) text += diff(change, width);
    return text;
}

nlohmann::ordered_json TagEntry::json() const {
    Json track = trackFileJson(report_, report_.analysis.frames, report_.origin);
    const auto& bpm = report_.analysis.bpm;
    track["bpm"] = bpm ? Json(*bpm) : Json(nullptr);
    const auto& key = report_.analysis.key;
    track["key"] = key ? keyNameJson(key->best()) : Json(nullptr);
    track["written"] = report_.isWritten;
    track["fields"] = Json::array();
    for (const TagChange& change : report_.changes) track["fields"].push_back(changeJson(change));
    return track;
}

}  // namespace output
