// SPDX-License-Identifier: MIT
#include "catalogue/TrackStore.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "catalogue/CatalogueError.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/correction/corrected.h"
#include "catalogue/folded.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"
#include "catalogue/storedRow.h"

namespace catalogue {

namespace {

constexpr const char* kFind = "SELECT id, audio_hash FROM tracks WHERE path = ?1";

constexpr const char* kPutTrack = R"sql(
INSERT INTO tracks (path, size, modified_ns, container, codec, channels, file_rate, artist, title,
    artist_order, title_order, search, audio_hash, rate, format_changes, frames, seconds, added_at)
VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18)
ON CONFLICT (path) DO UPDATE SET
    size = excluded.size, modified_ns = excluded.modified_ns, audio_hash = excluded.audio_hash,
    container = excluded.container, codec = excluded.codec, channels = excluded.channels,
    file_rate = excluded.file_rate, rate = excluded.rate,
    format_changes = excluded.format_changes, artist = excluded.artist, title = excluded.title,
    frames = excluded.frames, seconds = excluded.seconds, gone_at = NULL,
    artist_order = excluded.artist_order, title_order = excluded.title_order,
    search = excluded.search
RETURNING id)sql";

constexpr const char* kDropResults = "DELETE FROM results WHERE track_id = ?1";
constexpr const char* kAddParameters = "INSERT OR IGNORE INTO parameters (json) VALUES (?1)";
constexpr const char* kParametersId = "SELECT id FROM parameters WHERE json = ?1";

constexpr const char* kPutResult = R"sql(
INSERT OR REPLACE INTO results (track_id, parameters_id, made_at, tool_version, analysis_seconds,
    warnings, bpm, raw_bpm, is_steady, tempo_confidence, level_confidence, phase_confidence,
    bars_confidence, key, key_confidence, tuning_cents, details, asked_at)
VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18)
RETURNING id)sql";

constexpr const char* kPutGrid = "INSERT INTO grids (result_id, beats) VALUES (?1, ?2)";
constexpr const char* kPutWaves =
    "INSERT INTO waves (result_id, loud, dots, zoom) VALUES (?1, ?2, ?3, ?4)";

constexpr const char* kShow = R"sql(
UPDATE tracks SET result_id = ?2, bpm = ?3, key = ?4, confidence = ?5,
    is_corrected = EXISTS (
        SELECT 1 FROM corrections c WHERE c.audio_hash = tracks.audio_hash)
WHERE id = ?1)sql";

/** The result r with the parameters p that lists show comes first in this order. Tempo and key are
 *  wanted by most; what leaves one of them out hides nothing that is known. */
constexpr const char* kShownFirst =
    " ORDER BY iif(json_valid(p.json), (p.json ->> '$.tempo' <> 'off') + (p.json ->> '$.key'), 0) "
    "DESC, r.asked_at DESC, r.made_at DESC, r.id DESC LIMIT 1";

constexpr const char* kToShow = R"sql(
SELECT r.id, r.bpm, r.tempo_confidence * r.level_confidence * r.phase_confidence, r.key,
    r.key_confidence
FROM results r JOIN parameters p ON p.id = r.parameters_id WHERE r.track_id = ?1)sql";

constexpr const char* kReadShown = " WHERE t.id = ?1 AND r.id = t.result_id";
constexpr const char* kReadAll = " WHERE t.id = ?1";

constexpr const char* kCopies = R"sql(
SELECT id FROM tracks WHERE audio_hash = (SELECT audio_hash FROM tracks WHERE id = ?1))sql";

constexpr const char* kChoices = R"sql(
SELECT id FROM tracks t WHERE is_corrected = 1
    OR EXISTS (SELECT 1 FROM corrections c WHERE c.audio_hash = t.audio_hash)
    OR (SELECT count(*) FROM results r WHERE r.track_id = t.id) > 1)sql";

constexpr const char* kMove = R"sql(
UPDATE tracks SET path = ?1, size = ?2, modified_ns = ?3, container = ?4, codec = ?5, channels = ?6,
    file_rate = ?7, artist = ?8, title = ?9, artist_order = ?10, title_order = ?11, search = ?12,
    gone_at = NULL
WHERE id = ?13)sql";

std::string bytesOf(const AudioHash& hash) {
    return {hash.begin(), hash.end()};
}

using Shown = TrackStore::Shown;

/** The less certain of tempo and key. */
void weaken(std::optional<double>& confidence, const std::optional<double>& other) {
    if (other) confidence = std::min(confidence.value_or(*other), *other);
}

Shown shownOf(const beatatlas::track::TrackResult& result) {
    Shown shown;
    shown.bpm = result.bpm;
    if (result.judgement) {
        const BA_TrackConfidence& sure = result.judgement->confidence;
        weaken(shown.confidence, sure.tempo * sure.level * sure.phase);
    }
    if (result.key) {
        shown.key = result.key->best();
        weaken(shown.confidence, result.key->confidence);
    }
    return shown;
}

/** Of a row of kToShow. */
Shown foundIn(const SQLite::Statement& row) {
    Shown shown;
    shown.bpm = realOf(row, 1);
    if (!row.isColumnNull(3)) shown.key = row.getColumn(3).getInt();
    weaken(shown.confidence, realOf(row, 2));
    weaken(shown.confidence, realOf(row, 4));
    return shown;
}

/** What a track's file says of itself, for the parameters 1 to 12. */
void bindFile(SQLite::Statement& statement, const std::string& path, const FileState& state,
              const base::TrackFormat& format) {
    const base::TrackTags& tags = format.tags;
    bindBytes(statement, 1, path);
    statement.bind(2, state.size);
    statement.bind(3, state.modifiedNanoseconds);
    statement.bind(4, format.container);
    statement.bind(5, format.codec);
    statement.bind(6, format.channels);
    statement.bind(7, format.trackRate);
    statement.bind(8, tags.artist);
    statement.bind(9, tags.title);
    statement.bind(10, folded(tags.artist));
    statement.bind(11, folded(tags.title));
    statement.bind(12, searchText(path, tags.artist, tags.title));
}

void bindTempo(SQLite::Statement& statement, const ResultRow& result) {
    bindReal(statement, 7, result.bpm);
    bindReal(statement, 8, result.rawBpm);
    for (int index = 9; index <= 13; ++index) statement.bind(index);
    if (!result.isSteady) return;
    statement.bind(9, *result.isSteady ? 1 : 0);
    statement.bind(10, result.confidence.tempo);
    statement.bind(11, result.confidence.level);
    statement.bind(12, result.confidence.phase);
    statement.bind(13, result.confidence.bars);
}

void bindKey(SQLite::Statement& statement, const ResultRow& result) {
    for (int index = 14; index <= 16; ++index) statement.bind(index);
    if (result.key < 0) return;
    statement.bind(14, result.key);
    statement.bind(15, result.keyConfidence);
    statement.bind(16, result.tuningCents);
}

}  // namespace

struct TrackStore::Statements {
    explicit Statements(SQLite::Database& database)
        : find(database, kFind), putTrack(database, kPutTrack), dropResults(database, kDropResults),
          addParameters(database, kAddParameters), parametersId(database, kParametersId),
          putResult(database, kPutResult), putGrid(database, kPutGrid),
          putWaves(database, kPutWaves),
          toShow(database, fmt::format("{}{}", kToShow, kShownFirst)), show(database, kShow),
          readShown(database, fmt::format("{}{}", kStoredRow, kReadShown)),
          readAll(database, fmt::format("{}{}", kStoredRow, kReadAll)) {}

    SQLite::Statement find;
    SQLite::Statement putTrack;
    SQLite::Statement dropResults;
    SQLite::Statement addParameters;
    SQLite::Statement parametersId;
    SQLite::Statement putResult;
    SQLite::Statement putGrid;
    SQLite::Statement putWaves;
    SQLite::Statement toShow;
    SQLite::Statement show;
    SQLite::Statement readShown;
    SQLite::Statement readAll;
};

TrackStore::TrackStore(const Catalogue& catalogue)
    : TrackStore(catalogue.database(), catalogue.path()) {}

TrackStore::TrackStore(SQLite::Database& database, std::string path)
    : database_(database), path_(std::move(path)) {
    statements_ = guarded(path_, [&] { return std::make_unique<Statements>(database_); });
}

TrackStore::~TrackStore() = default;

std::optional<TrackStore::Id> TrackStore::find(const std::string& path) {
    return guarded(path_, [&]() -> std::optional<Id> {
        SQLite::Statement& find = statements_->find;
        const ResetAfter reset(find);
        bindBytes(find, 1, path);
        if (!find.executeStep()) return std::nullopt;
        return find.getColumn(0).getInt64();
    });
}

TrackStore::Id TrackStore::putTrack(const TrackRow& track) {
    {
        SQLite::Statement& find = statements_->find;
        const ResetAfter reset(find);
        bindBytes(find, 1, track.path);
        if (find.executeStep() && find.getColumn(1).getString() != bytesOf(track.hash)) {
            statements_->dropResults.bind(1, find.getColumn(0).getInt64());
            execute(statements_->dropResults);
        }
    }
    SQLite::Statement& put = statements_->putTrack;
    const ResetAfter reset(put);
    bindFile(put, track.path, track.state, track.format);
    bindBytes(put, 13, bytesOf(track.hash));
    put.bind(14, track.format.sessionRate);
    put.bind(15, track.format.changes ? 1 : 0);
    put.bind(16, track.frames);
    put.bind(17, track.seconds);
    put.bind(18, secondsNow());
    put.executeStep();
    return put.getColumn(0).getInt64();
}

void TrackStore::move(Id track, const std::string& path, const FileState& state,
                      const base::TrackFormat& format) {
    SQLite::Statement move(database_, kMove);
    bindFile(move, path, state, format);
    move.bind(13, track);
    move.exec();
}

std::int64_t TrackStore::parametersId(const std::string& json) {
    statements_->addParameters.bind(1, json);
    execute(statements_->addParameters);
    SQLite::Statement& select = statements_->parametersId;
    const ResetAfter reset(select);
    select.bind(1, json);
    select.executeStep();
    return select.getColumn(0).getInt64();
}

void TrackStore::putResult(Id track, const ResultRow& result, std::int64_t madeAt,
                           std::int64_t askedAt) {
    const std::int64_t parameters = parametersId(result.parameters);
    std::int64_t resultId = 0;
    {
        SQLite::Statement& put = statements_->putResult;
        const ResetAfter reset(put);
        put.bind(1, track);
        put.bind(2, parameters);
        put.bind(3, madeAt);
        put.bind(4, result.toolVersion);
        put.bind(5, result.analysisSeconds);
        put.bind(6, nlohmann::json(result.warnings).dump());
        bindTempo(put, result);
        bindKey(put, result);
        put.bind(17, result.details);
        put.bind(18, askedAt);
        put.executeStep();
        resultId = put.getColumn(0).getInt64();
    }
    putBlobs(resultId, result);
}

void TrackStore::putBlobs(std::int64_t resultId, const ResultRow& result) {
    if (!result.beats.empty()) {
        statements_->putGrid.bind(1, resultId);
        bindBytes(statements_->putGrid, 2, result.beats);
        execute(statements_->putGrid);
    }
    if (result.loudWave.empty() && result.dotsWave.empty() && result.zoomWave.empty()) return;
    statements_->putWaves.bind(1, resultId);
    bindBytes(statements_->putWaves, 2, result.loudWave);
    bindBytes(statements_->putWaves, 3, result.dotsWave);
    bindBytes(statements_->putWaves, 4, result.zoomWave);
    execute(statements_->putWaves);
}

void TrackStore::refresh(Id track) {
    const std::vector<Edit> edits = editsOf(database_, track);
    std::optional<Id> resultId;
    Shown shown;
    {
        SQLite::Statement& toShow = statements_->toShow;
        const ResetAfter reset(toShow);
        toShow.bind(1, track);
        if (toShow.executeStep()) {
            resultId = toShow.getColumn(0).getInt64();
            shown = foundIn(toShow);
        }
    }
    show(track, resultId, shown);
    if (!resultId || edits.empty()) return;
    try {
        show(track, resultId,
             shownOf(corrected(wholeTrack(read(track).value().analysed).result, edits)));
    } catch (const DamagedRecord&) {  // What was found is all there is to show.
    }
}

void TrackStore::show(Id track, std::optional<Id> resultId, const Shown& shown) {
    SQLite::Statement& show = statements_->show;
    show.bind(1, track);
    bindInteger(show, 2, resultId);
    bindReal(show, 3, shown.bpm);
    bindInteger(show, 4, shown.key);
    bindReal(show, 5, shown.confidence);
    execute(show);
}

void TrackStore::refreshCopies(Id track) {
    SQLite::Statement copies(database_, kCopies);
    copies.bind(1, track);
    refreshEach(copies);
}

void TrackStore::refreshChoices() {
    SQLite::Statement choices(database_, kChoices);
    refreshEach(choices);
}

/** The tracks are gathered before: what is written may be what a query reads. */
void TrackStore::refreshEach(SQLite::Statement& ids) {
    std::vector<Id> tracks;
    while (ids.executeStep()) tracks.push_back(ids.getColumn(0).getInt64());
    for (const Id track : tracks) refresh(track);
}

std::optional<TrackStore::Dated> TrackStore::read(Id track) {
    return guarded(path_, [&]() -> std::optional<Dated> {
        SQLite::Statement& read = statements_->readShown;
        const ResetAfter reset(read);
        read.bind(1, track);
        if (!read.executeStep()) return std::nullopt;
        return readStoredRow(read);
    });
}

std::vector<TrackStore::Dated> TrackStore::readAll(Id track) {
    SQLite::Statement& read = statements_->readAll;
    const ResetAfter reset(read);
    read.bind(1, track);
    std::vector<Dated> all;
    while (read.executeStep()) all.push_back(readStoredRow(read));
    return all;
}

bool TrackStore::isGone(Id track) const {
    return guarded(path_, [&] {
        SQLite::Statement select(database_, "SELECT is_gone FROM tracks WHERE id = ?1");
        select.bind(1, track);
        return select.executeStep() && select.getColumn(0).getInt() != 0;
    });
}

std::int64_t secondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

}  // namespace catalogue
