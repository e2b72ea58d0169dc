// SPDX-License-Identifier: MIT
#include "cli/storedTrack.h"

#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/correction/corrected.h"
#include "output/KeyName.h"
#include "output/textFormat.h"

namespace app {

namespace fs = std::filesystem;

std::vector<std::string> catalogueNames(const std::string& file) {
    std::error_code failure;
    std::vector<std::string> names;
    if (const fs::path absolute = fs::absolute(file, failure); !failure)
        names.push_back(absolute.lexically_normal().string());
    if (const fs::path followed = fs::weakly_canonical(file, failure); !failure)
        names.push_back(followed.string());
    return names;
}

std::optional<catalogue::TrackStore::Id> findStored(catalogue::TrackStore& store,
                                                    const std::string& file) {
    for (const std::string& name : catalogueNames(file)) {
        if (const auto found = store.find(name)) return found;
    }
    return std::nullopt;
}

std::string correctionText(const catalogue::Edit& edit) {
    switch (edit.kind) {
    case catalogue::EditKind::bpm:
        return output::bpmText(edit.value) + " BPM";
    case catalogue::EditKind::twice:
        return "doubled";
    case catalogue::EditKind::half:
        return "halved";
    case catalogue::EditKind::threeToTwo:
        return "three beats for two";
    case catalogue::EditKind::shiftHalf:
        return "moved by half a beat";
    case catalogue::EditKind::shiftMilliseconds:
        return fmt::format("moved by {:g} ms", edit.value);
    case catalogue::EditKind::downbeat:
        return "a bar begins at " + output::clockTime(edit.value);
    case catalogue::EditKind::key:
        break;
    }
    return "key " + output::KeyName(static_cast<int>(edit.value)).musical();
}

StoredTrack readStored(const catalogue::Catalogue& catalogue, catalogue::TrackStore::Id track) {
    catalogue::TrackStore store(catalogue);
    const auto newest = store.read(track);
    if (!newest) throw catalogue::DamagedRecord("has no result in the catalogue");
    const catalogue::WholeTrack whole = wholeTrack(newest->analysed);
    const std::vector<catalogue::Edit> edits = catalogue::Corrections(catalogue).of(track);
    StoredTrack stored;
    static_cast<base::TrackSource&>(stored.report) = whole.source;
    stored.report.options = whole.options;
    stored.report.analysis = corrected(whole.result, edits);
    for (const catalogue::Edit& edit : edits)
        stored.report.corrections.push_back(
            {editName(edit.kind), edit.value, correctionText(edit)});
    stored.note.foundBpm = whole.result.bpm;
    if (whole.result.key) stored.note.foundKey = whole.result.key->best();
    stored.note.madeAt = newest->madeAt;
    stored.note.toolVersion = newest->analysed.result.toolVersion;
    stored.note.parameters = newest->analysed.result.parameters;
    stored.note.isGone = store.isGone(track);
    return stored;
}

}  // namespace app
