// SPDX-License-Identifier: MIT
#include "catalogue/correction/Corrections.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "catalogue/TrackStore.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kOfTrack =
    "SELECT kind, value FROM corrections WHERE track_id = ?1 ORDER BY id";
constexpr const char* kAdd =
    "INSERT INTO corrections (track_id, kind, value, made_at) VALUES (?1, ?2, ?3, ?4)";
constexpr const char* kDropLast = R"sql(
DELETE FROM corrections
WHERE id = (SELECT id FROM corrections WHERE track_id = ?1 ORDER BY id DESC LIMIT 1))sql";

}  // namespace

std::vector<Edit> Corrections::of(std::int64_t trackId) const {
    return guarded(catalogue_.path(), [&] {
        std::vector<Edit> edits;
        SQLite::Statement select(catalogue_.database(), kOfTrack);
        select.bind(1, trackId);
        while (select.executeStep()) {
            // A kind that this program does not know is none that it can apply.
            if (const auto kind = editKindOf(select.getColumn(0).getString()))
                edits.push_back({*kind, select.getColumn(1).getDouble()});
        }
        return edits;
    });
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
        TrackStore(catalogue_).refresh(trackId);
        transaction.commit();
    });
}

std::optional<Edit> Corrections::undo(std::int64_t trackId) {
    return guarded(catalogue_.path(), [&]() -> std::optional<Edit> {
        SQLite::Transaction transaction(catalogue_.database(),
                                        SQLite::TransactionBehavior::IMMEDIATE);
        const std::vector<Edit> edits = of(trackId);
        if (edits.empty()) return std::nullopt;
        SQLite::Statement dropLast(catalogue_.database(), kDropLast);
        dropLast.bind(1, trackId);
        dropLast.exec();
        TrackStore(catalogue_).refresh(trackId);
        transaction.commit();
        return edits.back();
    });
}

}  // namespace catalogue
