// SPDX-License-Identifier: MIT
// What is gone is looked for while others may write: a network's disk takes its time to answer.
#include "catalogue/Sweep.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "base/Interrupt.h"
#include "catalogue/TrackStore.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/dropStatements.h"
#include "catalogue/sqlBinding.h"

namespace catalogue {

namespace {

namespace fs = std::filesystem;

/** Paths in the folder: bytes that begin with it and '/', which '0' follows. */
constexpr const char* kTracksBelow = R"sql(
SELECT id, path, is_gone FROM tracks
WHERE path = ?1 OR (path > ?2 AND path < ?3) ORDER BY path)sql";
constexpr const char* kFailuresBelow =
    "SELECT path FROM failures WHERE path = ?1 OR (path > ?2 AND path < ?3)";

constexpr const char* kMarkGone = "UPDATE tracks SET gone_at = ?2 WHERE id = ?1";

/** Somebody may correct the track after it was read here. */
constexpr const char* kIsCorrected = R"sql(
SELECT 1 FROM corrections WHERE audio_hash = (SELECT audio_hash FROM tracks WHERE id = ?1))sql";

std::string folderOf(const std::string& root) {
    return root.ends_with('/') ? root.substr(0, root.size() - 1) : root;
}

void bindRoot(SQLite::Statement& statement, const std::string& root) {
    bindBytes(statement, 1, folderOf(root));
    bindBytes(statement, 2, folderOf(root) + '/');
    bindBytes(statement, 3, folderOf(root) + '0');
}

/** The roots that lie in no other, sorted, each with '/' at its end: what lies in a root begins
 *  with it, and follows it in this order before anything that does not. */
std::vector<std::string> outermost(const std::vector<Scan::Root>& roots) {
    std::vector<std::string> sorted;
    for (const Scan::Root& root : roots) sorted.push_back(folderOf(root.path) + '/');
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::string> kept;
    for (std::string& root : sorted) {
        if (kept.empty() || !root.starts_with(kept.back())) kept.push_back(std::move(root));
    }
    return kept;
}

/** @param roots  as outermost() returns them */
bool isBelowAny(const std::string& path, const std::vector<std::string>& roots) {
    const std::string place = path + '/';
    const auto behind = std::upper_bound(roots.begin(), roots.end(), place);
    return behind != roots.begin() && place.starts_with(*std::prev(behind));
}

}  // namespace

Scan::Ending Sweep::run(const std::vector<Scan::Root>& roots, Scan::Pruning pruning) {
    pruning_ = pruning;
    std::vector<Scan::Root> empty;
    std::copy_if(roots.begin(), roots.end(), std::back_inserter(empty),
                 [](const Scan::Root& root) { return !root.holdsFiles; });
    emptyRoots_ = outermost(empty);
    for (const std::string& root : outermost(roots)) sweep(root);
    batch_.commit();
    return ending_;
}

void Sweep::sweep(const std::string& root) {
    batch_.commit();
    endTracks(goneTracks(root));
    batch_.commit();
    dropFailures(goneFailures(root));
}

std::vector<Sweep::GoneTrack> Sweep::goneTracks(const std::string& root) {
    std::vector<GoneTrack> gone;
    SQLite::Statement below(database_, kTracksBelow);
    bindRoot(below, root);
    while (below.executeStep()) {
        base::Interrupt::check();
        const std::string path = below.getColumn(1).getString();
        if (!found_.isGone(path)) continue;
        const bool isKept = pruning_ != Scan::Pruning::none && isAlone(path);
        gone.push_back({below.getColumn(0).getInt64(), below.getColumn(2).getInt() != 0, isKept});
    }
    return gone;
}

/** Whether the folder of a file that is gone, or the nearest one above it that is there, is empty,
 *  or the file lies below a root in which nothing was found. */
bool Sweep::isAlone(const std::string& path) {
    if (isBelowAny(path, emptyRoots_)) return true;
    fs::path folder = fs::path(path).parent_path();
    // Paths come in order: most have the folder of the one before.
    if (folder.string() == lastFolder_) return isLastEmpty_;
    lastFolder_ = folder.string();
    std::error_code failure;
    while (!fs::is_directory(folder, failure) && folder.has_relative_path())
        folder = folder.parent_path();
    isLastEmpty_ = fs::is_empty(folder, failure) && !failure;
    return isLastEmpty_;
}

void Sweep::endTracks(const std::vector<GoneTrack>& gone) {
    SQLite::Statement mark(database_, kMarkGone);
    mark.bind(2, secondsNow());
    for (const GoneTrack& track : gone) {
        batch_.begin();
        ++ending_.gone;
        mark.bind(1, track.id);
        if (isPruned(track)) {
            prune(track.id);
        } else if (!track.isMarked) {
            execute(mark);
        }
        batch_.recordWritten();
    }
}

bool Sweep::isPruned(const GoneTrack& track) {
    if (pruning_ == Scan::Pruning::none) return false;
    if (track.isAlone) {
        ++ending_.keptAbsent;
        return false;
    }
    if (pruning_ == Scan::Pruning::all) return true;
    SQLite::Statement isCorrected(database_, kIsCorrected);
    isCorrected.bind(1, track.id);
    if (!isCorrected.executeStep()) return true;
    ++ending_.keptCorrected;
    return false;
}

void Sweep::prune(std::int64_t track) {
    dropCorrections(database_, track);
    SQLite::Statement drop(database_, kDropTrack);
    drop.bind(1, track);
    ending_.pruned += drop.exec();
}

/** A failure of a file that is no more is of no use to anybody. */
std::vector<std::string> Sweep::goneFailures(const std::string& root) {
    std::vector<std::string> gone;
    SQLite::Statement below(database_, kFailuresBelow);
    bindRoot(below, root);
    while (below.executeStep()) {
        base::Interrupt::check();
        std::string path = below.getColumn(0).getString();
        if (found_.isGone(path)) gone.push_back(std::move(path));
    }
    return gone;
}

void Sweep::dropFailures(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        batch_.begin();
        SQLite::Statement drop(database_, kDropFailure);
        bindBytes(drop, 1, path);
        drop.exec();
        batch_.recordWritten();
    }
}

}  // namespace catalogue
