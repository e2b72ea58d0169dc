// SPDX-License-Identifier: MIT
#include "serve/StoredTracks.h"

#include <cmath>
#include <optional>

#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "catalogue/TrackStore.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/correction/corrected.h"
#include "cli/storedTrack.h"
#include "output/jsonParts.h"
#include "output/page/viewJson.h"
#include "serve/fileReply.h"
#include "serve/soundReply.h"

namespace app {

namespace {

using Json = nlohmann::ordered_json;
using catalogue::Catalogue;
using catalogue::Edit;
using catalogue::EditKind;

HttpReply unknownTrack() {
    return errorReply(404, "there is no such track in the catalogue");
}

bool isWithin(double value, double lowest, double highest) {
    return value >= lowest && value <= highest;
}

/** Whether the value is one that the kind of edit can have; what it does to a track is another
 *  question. */
bool isSensible(const Edit& edit) {
    switch (edit.kind) {
    case EditKind::bpm:
        return isWithin(edit.value, catalogue::kLowestCorrectedBpm,
                        catalogue::kHighestCorrectedBpm);
    case EditKind::shiftMilliseconds:
        return isWithin(edit.value, -catalogue::kLongestShiftMilliseconds,
                        catalogue::kLongestShiftMilliseconds);
    case EditKind::downbeat:
        return isWithin(edit.value, 0.0, catalogue::kLastDownbeatSeconds);
    case EditKind::key:
        return isWithin(edit.value, 0.0, beatatlas::track::kKeyCount - 1) &&
               edit.value == std::floor(edit.value);
    default:
        return edit.value == 0.0;
    }
}

/** Nothing for a text that is no correction. */
std::optional<Edit> editOf(const std::string& body) {
    const auto json = nlohmann::json::parse(body, nullptr, false);
    if (!json.is_object() || !json.contains("kind") || !json["kind"].is_string())
        return std::nullopt;
    const auto kind = catalogue::editKindOf(json["kind"].get_ref<const std::string&>());
    const auto value = json.find("value");
    if (!kind || (value != json.end() && !value->is_number())) return std::nullopt;
    const Edit edit{*kind, value == json.end() ? 0.0 : value->get<double>()};
    return isSensible(edit) ? std::optional(edit) : std::nullopt;
}

}  // namespace

HttpReply StoredTracks::viewIn(const Catalogue& catalogue, Id track) const {
    const StoredTrack stored = readStored(catalogue, track);
    Json view = viewJson(stored.report, stored.report.corrections);
    view["id"] = track;
    view["path"] = base::displayName(stored.report.path);
    view["gone"] = stored.note.isGone;
    view["foundBpm"] = stored.note.foundBpm ? Json(*stored.note.foundBpm) : Json(nullptr);
    view["foundKey"] =
        stored.note.foundKey ? output::keyNameJson(*stored.note.foundKey) : Json(nullptr);
    return jsonReply(view.dump());
}

HttpReply StoredTracks::view(Id track) const {
    const Catalogue catalogue(path_, Catalogue::Access::read);
    if (!catalogue::TrackStore(catalogue).read(track)) return unknownTrack();
    return viewIn(catalogue, track);
}

HttpReply StoredTracks::file(Id track, const std::string& range) const {
    const Catalogue catalogue(path_, Catalogue::Access::read);
    const auto stored = catalogue::TrackStore(catalogue).read(track);
    if (!stored) return unknownTrack();
    return fileReply(stored->analysed.track, range);
}

HttpReply StoredTracks::sound(Id track) const {
    const Catalogue catalogue(path_, Catalogue::Access::read);
    const auto stored = catalogue::TrackStore(catalogue).read(track);
    if (!stored) return unknownTrack();
    return soundReply(stored->analysed.track);
}

HttpReply StoredTracks::correct(Id track, const std::string& body) {
    const auto edit = editOf(body);
    if (!edit) return errorReply(400, "that is no correction");
    const std::lock_guard lock(changing_);
    const Catalogue catalogue(path_, Catalogue::Access::write);
    if (!catalogue::TrackStore(catalogue).read(track)) return unknownTrack();
    const output::TrackReport report = readStored(catalogue, track).report;
    if (const char* reason = refusalOf(report.analysis, *edit))
        return errorReply(409, std::string("the track ") + reason);
    catalogue::Corrections(catalogue).add(track, *edit);
    return viewIn(catalogue, track);
}

HttpReply StoredTracks::undo(Id track) {
    const std::lock_guard lock(changing_);
    const Catalogue catalogue(path_, Catalogue::Access::write);
    if (!catalogue::TrackStore(catalogue).read(track)) return unknownTrack();
    if (!catalogue::Corrections(catalogue).undo(track))
        return errorReply(409, "the track has no correction to take back");
    return viewIn(catalogue, track);
}

}  // namespace app
