// SPDX-License-Identifier: MIT
#include "catalogue/correction/Corrections.h"

#include <cmath>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "catalogue/TrackStore.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kOfTrack = R"sql(
SELECT kind, value FROM corrections
WHERE audio_hash = (SELECT audio_hash FROM tracks WHERE id = ?1) ORDER BY id)sql";
constexpr const char* kAdd = R"sql(
INSERT INTO corrections (audio_hash, kind, value, made_at)
SELECT audio_hash, ?2, ?3, ?4 FROM tracks WHERE id = ?1)sql";
constexpr const char* kFromLast = R"sql(
SELECT kind, value, id FROM corrections
WHERE audio_hash = (SELECT audio_hash FROM tracks WHERE id = ?1) ORDER BY id DESC)sql";
constexpr const char* kDrop = "DELETE FROM corrections WHERE id = ?1";
constexpr const char* kDropOfTrack = R"sql(
DELETE FROM corrections
WHERE audio_hash = (SELECT audio_hash FROM tracks WHERE id = ?1) AND NOT EXISTS (
    SELECT 1 FROM tracks other
    WHERE other.audio_hash = corrections.audio_hash AND other.id <> ?1))sql";

// More than any seconds, milliseconds, BPM and keys.
constexpr double kMostValue = 1.0e6;

/** Nothing for a kind or a value that this program does not know: it can neither show nor apply
 *  it, and leaves it alone. */
std::optional<Edit> editOf(const SQLite::Statement& row) {
    const auto kind = editKindOf(row.getColumn(0).getString());
    const double value = row.getColumn(1).getDouble();
    if (!kind || !(std::abs(value) <= kMostValue)) return std::nullopt;
    const bool isNoKey = value < 0.0 || value >= beatatlas::track::kKeyCount;
    if (*kind == EditKind::key && isNoKey) return std::nullopt;
    return Edit{*kind, value};
}

}  // namespace

std::vector<Edit> Corrections::of(std::int64_t trackId) const {
    return guarded(catalogue_.path(), [&] { return editsOf(catalogue_.database(), trackId); });
}

void Corrections::add(std::int64_t trackId, const Edit& edit) {
    guarded(catalogue_.path(), [&] {
        SQLite::Transaction transaction(catalogue_.database(),
                                        SQLite::TransactionBehavior::IMMEDIATE);
        SQLite::Statement insert(catalogue_.database(), kAdd);
        insert.bind(1, trackId);
        insert.bind(2, editName(edit.kind));
        insert.bind(3, edit.value);
        insert.bind(4, secondsNow());
        insert.exec();
        TrackStore(catalogue_).refreshCopies(trackId);
        transaction.commit();
    });
}

std::optional<Edit> Corrections::undo(std::int64_t trackId) {
    return guarded(catalogue_.path(), [&]() -> std::optional<Edit> {
        SQLite::Transaction transaction(catalogue_.database(),
                                        SQLite::TransactionBehavior::IMMEDIATE);
        SQLite::Statement fromLast(catalogue_.database(), kFromLast);
        fromLast.bind(1, trackId);
        std::optional<Edit> last;
        while (!last && fromLast.executeStep()) last = editOf(fromLast);
        if (!last) return std::nullopt;
        SQLite::Statement drop(catalogue_.database(), kDrop);
        drop.bind(1, fromLast.getColumn(2).getInt64());
        drop.exec();
        fromLast.reset();
        TrackStore(catalogue_).refreshCopies(trackId);
        transaction.commit();
        return last;
    });
}

void dropCorrections(SQLite::Database& database, std::int64_t trackId) {
    SQLite::Statement drop(database, kDropOfTrack);
    drop.bind(1, trackId);
    drop.exec();
}

std::vector<Edit> editsOf(SQLite::Database& database, std::int64_t trackId) {
    std::vector<Edit> edits;
    SQLite::Statement select(database, kOfTrack);
    select.bind(1, trackId);
    while (select.executeStep()) {
        if (const auto edit = editOf(select)) edits.push_back(*edit);
    }
    return edits;
}

}  // namespace catalogue
