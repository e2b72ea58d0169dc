// SPDX-License-Identifier: MIT
#include "catalogue/storedRow.h"

#include <algorithm>
#include <string>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <nlohmann/json.hpp>

#include "catalogue/CatalogueError.h"
#include "catalogue/sqlBinding.h"

namespace catalogue {

const char* const kStoredRow = R"sql(
SELECT t.path, t.size, t.modified_ns, t.audio_hash, t.container, t.codec, t.channels, t.file_rate,
    t.rate, t.format_changes, t.artist, t.title, t.frames, t.seconds,
    p.json, r.tool_version, r.analysis_seconds, r.warnings, r.bpm, r.raw_bpm, r.is_steady,
    r.tempo_confidence, r.level_confidence, r.phase_confidence, r.bars_confidence,
    r.key, r.key_confidence, r.tuning_cents, r.details, g.beats, w.loud, w.dots, w.zoom,
    r.made_at, r.asked_at
FROM results r
JOIN tracks t ON t.id = r.track_id
JOIN parameters p ON p.id = r.parameters_id
LEFT JOIN grids g ON g.result_id = r.id
LEFT JOIN waves w ON w.result_id = r.id)sql";

namespace {

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

/** The columns one after the other, as kStoredRow names them. */
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

}  // namespace

TrackStore::Dated readStoredRow(const SQLite::Statement& statement) {
    RowReader row(statement);
    TrackStore::Dated dated;
    dated.analysed.track = readTrack(row);
    dated.analysed.result = readResult(row);
    dated.madeAt = row.integer();
    dated.askedAt = row.integer();
    return dated;
}

}  // namespace catalogue
