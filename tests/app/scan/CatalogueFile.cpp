// SPDX-License-Identifier: MIT
#include "scan/CatalogueFile.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

namespace test {

namespace {

// Writing: a reader of a database that a killed process left needs to bring it in order.
SQLite::Database opened(const std::string& path) {
    SQLite::Database database(path, SQLite::OPEN_READWRITE);
    database.setBusyTimeout(10000);
    return database;
}

constexpr const char* kTracks = R"sql(
SELECT 'track|' || hex(t.path) || '|' || t.size || '|' || t.modified_ns || '|' || hex(t.audio_hash)
    || '|' || t.container || '|' || t.codec || '|' || t.channels || '|' || t.file_rate || '|' ||
    t.rate || '|' || t.artist || '|' || t.title || '|' || t.frames || '|' || t.seconds || '|' ||
    t.is_gone || '|' || ifnull(t.bpm, '-') || '|' || ifnull(t.key, '-') || '|' ||
    ifnull(t.confidence, '-') || '|' || r.warnings || '|' || r.details || '|' ||
    ifnull(hex(g.beats), '-') || '|' || ifnull(hex(w.loud) || hex(w.dots) || hex(w.zoom), '-')
FROM tracks t LEFT JOIN results r ON r.track_id = t.id
    LEFT JOIN grids g ON g.result_id = r.id LEFT JOIN waves w ON w.result_id = r.id
ORDER BY t.path)sql";

constexpr const char* kFailures = R"sql(
SELECT 'failure|' || hex(path) || '|' || size || '|' || modified_ns || '|' || kind || '|' || reason
FROM failures ORDER BY path)sql";

}  // namespace

std::string CatalogueFile::value(const std::string& query) const {
    const auto all = column(query);
    return all.empty() ? "" : all.front();
}

std::vector<std::string> CatalogueFile::column(const std::string& query) const {
    SQLite::Database database = opened(path_);
    SQLite::Statement statement(database, query);
    std::vector<std::string> values;
    while (statement.executeStep()) values.push_back(statement.getColumn(0).getString());
    return values;
}

std::vector<std::string> CatalogueFile::content() const {
    std::vector<std::string> rows = column(kTracks);
    const std::vector<std::string> failures = column(kFailures);
    rows.insert(rows.end(), failures.begin(), failures.end());
    return rows;
}

}  // namespace test
