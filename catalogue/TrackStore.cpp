// SPDX-License-Identifier: MIT
#include "catalogue/TrackStore.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <nlohmann/json.hpp>

#include "catalogue/CatalogueError.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/correction/corrected.h"
#include "catalogue/folded.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kFind = "SELECT id, audio_hash FROM tracks WHERE path = ?1";

constexpr const char* kPutTrack = R"sql(
INSERT INTO tracks (path, size, modified_ns, audio_hash, container, codec, channels, file_rate,
    rate, format_changes, artist, title, frames, seconds, added_at, artist_order, title_order,
    search)
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
    bars_confidence, key, key_confidence, tuning_cents, details)
VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17)
RETURNING id)sql";

constexpr const char* kPutGrid = "INSERT INTO grids (result_id, beats) VALUES (?1, ?2)";
constexpr const char* kPutWaves =
    "INSERT INTO waves (result_id, loud, dots, zoom) VALUES (?1, ?2, ?3, ?4)";

constexpr const char* kNewest = R"sql(
SELECT id, bpm, tempo_confidence * level_confidence * phase_confidence, key, key_confidence
FROM results WHERE track_id = ?1 ORDER BY made_at DESC, id DESC LIMIT 1)sql";

constexpr const char* kShow = R"sql(
UPDATE tracks SET result_id = ?2, bpm = ?3, key = ?4, confidence = ?5,
    is_corrected = EXISTS (SELECT 1 FROM corrections WHERE track_id = ?1)
WHERE id = ?1)sql";

constexpr const char* kRead = R"sql(
SELECT t.path, t.size, t.modified_ns, t.audio_hash, t.container, t.codec, t.channels, t.file_rate,
    t.rate, t.format_changes, t.artist, t.title, t.frames, t.seconds,
    p.json, r.tool_version, r.analysis_seconds, r.warnings, r.bpm, r.raw_bpm, r.is_steady,
    r.tempo_confidence, r.level_confidence, r.phase_confidence, r.bars_confidence,
    r.key, r.key_confidence, r.tuning_cents, r.details, g.beats, w.loud, w.dots, w.zoom, r.made_at
FROM results r
JOIN tracks t ON t.id = r.track_id
JOIN parameters p ON p.id = r.parameters_id
LEFT JOIN grids g ON g.result_id = r.id
LEFT JOIN waves w ON w.result_id = r.id
WHERE r.track_id = ?1 ORDER BY r.made_at DESC, r.id DESC)sql";

std::string bytesOf(const AudioHash& hash) {
    return {hash.begin(), hash.end()};
}

AudioHash hashOf(const std::string& bytes) {
    AudioHash hash{};
    if (bytes.size() != hash.size())
        throw DamagedRecord("the hash of a track in the catalogue is damaged");
    std::copy(bytes.begin(), bytes.end(), hash.begin());
    return hash;
}

std::vector<std::string> warningsOf(const std::string& text) {
    try {
        return nlohmann::json::parse(text).get<std::vector<std::string>>();
    } catch (const nlohmann::json::exception&) {
        throw DamagedRecord("the warnings of a result in the catalogue are damaged");
    }
}

/** What lists read of a track. */
struct Shown {
    std::optional<double> bpm;
    std::optional<int> key;
    std::optional<double> confidence;
};

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

/** The columns one after the other, as kRead names them. */
class RowReader {
public:
    explicit RowReader(const SQLite::Statement& row) : row_(row) {}

    std::string bytes() { return row_.getColumn(column_++).getString(); }
    std::int64_t integer() { return row_.getColumn(column_++).getInt64(); }
    int number() { return row_.getColumn(column_++).getInt(); }
    double real() { return row_.getColumn(column_++).getDouble(); }
    std::optional<double> optionalReal() { return realOf(row_, column_++); }
    bool isNull() const { return row_.isColumnNull(column_); }
    void skip() { ++column_; }

private:
    const SQLite::Statement& row_;
    int column_ = 0;
};

TrackRow readTrack(RowReader& row) {
    TrackRow track;
    track.path = row.bytes();
    track.state.size = row.integer();
    track.state.modifiedNanoseconds = row.integer();
    track.hash = hashOf(row.bytes());
    track.format.container = row.bytes();
    track.format.codec = row.bytes();
    track.format.channels = row.number();
    track.format.trackRate = row.number();
    track.format.sessionRate = row.number();
    track.format.changes = row.number() != 0;
    track.format.tags.artist = row.bytes();
    track.format.tags.title = row.bytes();
    track.frames = row.integer();
    track.seconds = row.real();
    return track;
}

ResultRow readResult(RowReader& row) {
    ResultRow result;
    result.parameters = row.bytes();
    result.toolVersion = row.bytes();
    result.analysisSeconds = row.real();
    result.warnings = warningsOf(row.bytes());
    result.bpm = row.optionalReal();
    result.rawBpm = row.optionalReal();
    if (const auto isSteady = row.optionalReal()) result.isSteady = *isSteady != 0.0;
    result.confidence = {row.real(), row.real(), row.real(), row.real()};
    if (!row.isNull())
        result.key = row.number();
    else
        row.skip();
    result.keyConfidence = row.real();
    result.tuningCents = row.real();
    result.details = row.bytes();
    result.beats = row.bytes();
    result.loudWave = row.bytes();
    result.dotsWave = row.bytes();
    result.zoomWave = row.bytes();
    return result;
}

TrackStore::Dated readRow(const SQLite::Statement& statement) {
    RowReader row(statement);
    TrackStore::Dated dated;
    dated.analysed.track = readTrack(row);
    dated.analysed.result = readResult(row);
    dated.madeAt = row.integer();
    return dated;
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
          putWaves(database, kPutWaves), newest(database, kNewest), show(database, kShow),
          read(database, kRead) {}

    SQLite::Statement find;
    SQLite::Statement putTrack;
    SQLite::Statement dropResults;
    SQLite::Statement addParameters;
    SQLite::Statement parametersId;
    SQLite::Statement putResult;
    SQLite::Statement putGrid;
    SQLite::Statement putWaves;
    SQLite::Statement newest;
    SQLite::Statement show;
    SQLite::Statement read;
};

TrackStore::TrackStore(const Catalogue& catalogue) : catalogue_(catalogue) {
    statements_ = guarded(catalogue.path(),
                          [&] { return std::make_unique<Statements>(catalogue.database()); });
}

TrackStore::~TrackStore() = default;

std::optional<TrackStore::Id> TrackStore::find(const std::string& path) {
    return guarded(catalogue_.path(), [&]() -> std::optional<Id> {
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
    const base::TrackFormat& format = track.format;
    bindBytes(put, 1, track.path);
    put.bind(2, track.state.size);
    put.bind(3, track.state.modifiedNanoseconds);
    bindBytes(put, 4, bytesOf(track.hash));
    put.bind(5, format.container);
    put.bind(6, format.codec);
    put.bind(7, format.channels);
    put.bind(8, format.trackRate);
    put.bind(9, format.sessionRate);
    put.bind(10, format.changes ? 1 : 0);
    put.bind(11, format.tags.artist);
    put.bind(12, format.tags.title);
    put.bind(13, track.frames);
    put.bind(14, track.seconds);
    put.bind(15, secondsNow());
    put.bind(16, folded(format.tags.artist));
    put.bind(17, folded(format.tags.title));
    put.bind(18, searchText(track.path, format.tags.artist, format.tags.title));
    put.executeStep();
    return put.getColumn(0).getInt64();
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

void TrackStore::putResult(Id track, const ResultRow& result, std::int64_t madeAt) {
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
    const std::vector<Edit> edits = Corrections(catalogue_).of(track);
    std::optional<Id> resultId;
    Shown shown;
    {
        SQLite::Statement& newest = statements_->newest;
        const ResetAfter reset(newest);
        newest.bind(1, track);
        if (newest.executeStep()) {
            resultId = newest.getColumn(0).getInt64();
            shown.bpm = realOf(newest, 1);
            if (!newest.isColumnNull(3)) shown.key = newest.getColumn(3).getInt();
            weaken(shown.confidence, realOf(newest, 2));
            weaken(shown.confidence, realOf(newest, 4));
        }
    }
    if (resultId && !edits.empty())
        shown = shownOf(corrected(wholeTrack(read(track).value().analysed).result, edits));
    SQLite::Statement& show = statements_->show;
    show.bind(1, track);
    bindInteger(show, 2, resultId);
    bindReal(show, 3, shown.bpm);
    bindInteger(show, 4, shown.key);
    bindReal(show, 5, shown.confidence);
    execute(show);
}

std::optional<TrackStore::Dated> TrackStore::read(Id track) {
    return guarded(catalogue_.path(), [&]() -> std::optional<Dated> {
        SQLite::Statement& read = statements_->read;
        const ResetAfter reset(read);
        read.bind(1, track);
        if (!read.executeStep()) return std::nullopt;
        return readRow(read);
    });
}

std::vector<TrackStore::Dated> TrackStore::readAll(Id track) {
    SQLite::Statement& read = statements_->read;
    const ResetAfter reset(read);
    read.bind(1, track);
    std::vector<Dated> all;
    while (read.executeStep()) all.push_back(readRow(read));
    return all;
}

bool TrackStore::isGone(Id track) const {
    return guarded(catalogue_.path(), [&] {
        SQLite::Statement select(catalogue_.database(), "SELECT is_gone FROM tracks WHERE id = ?1");
        select.bind(1, track);
        return select.executeStep() && select.getColumn(0).getInt() != 0;
    });
}

std::int64_t secondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

}  // namespace catalogue
