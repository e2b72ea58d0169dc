// SPDX-License-Identifier: MIT
#include "catalogue/schema.h"

#include <array>
#include <cstdint>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/folded.h"

namespace catalogue {

namespace {

/** Tracks and what was found in them. What lists read of a track stands with the track, so that
 *  filters and orders have indexes; is_gone leads each of them, since a list is either of tracks
 *  that are there or of tracks that are not. Those of tempo, key and confidence hold all three: what
 *  lacks one of them comes first in its order, often lacks another, and is passed over quickly. */
constexpr const char* kTables = R"sql(
CREATE TABLE tracks (
    id INTEGER PRIMARY KEY,
    path BLOB NOT NULL UNIQUE,
    size INTEGER NOT NULL,
    modified_ns INTEGER NOT NULL,
    audio_hash BLOB NOT NULL,
    container TEXT NOT NULL,
    codec TEXT NOT NULL,
    channels INTEGER NOT NULL,
    file_rate INTEGER NOT NULL,
    rate INTEGER NOT NULL,
    format_changes INTEGER NOT NULL,
    artist TEXT NOT NULL,
    title TEXT NOT NULL,
    frames INTEGER NOT NULL,
    seconds REAL NOT NULL,
    added_at INTEGER NOT NULL,
    gone_at INTEGER,
    is_gone INTEGER GENERATED ALWAYS AS (gone_at IS NOT NULL) VIRTUAL,
    artist_order TEXT NOT NULL,
    title_order TEXT NOT NULL,
    result_id INTEGER,
    bpm REAL,
    key INTEGER,
    confidence REAL,
    is_corrected INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX tracks_by_size ON tracks (size);
CREATE INDEX tracks_by_hash ON tracks (audio_hash);
CREATE INDEX tracks_by_path ON tracks (is_gone, path);
CREATE INDEX tracks_by_artist ON tracks (is_gone, artist_order, title_order);
CREATE INDEX tracks_by_title ON tracks (is_gone, title_order, artist_order);
CREATE INDEX tracks_by_bpm ON tracks (is_gone, bpm, key, confidence);
CREATE INDEX tracks_by_key ON tracks (is_gone, key, bpm, confidence);
CREATE INDEX tracks_by_length ON tracks (is_gone, seconds);
CREATE INDEX tracks_by_confidence ON tracks (is_gone, confidence, bpm, key);
CREATE INDEX tracks_by_added ON tracks (is_gone, added_at);
CREATE INDEX tracks_corrected ON tracks (is_gone, is_corrected) WHERE is_corrected = 1;

CREATE TABLE parameters (
    id INTEGER PRIMARY KEY,
    json TEXT NOT NULL UNIQUE
);

CREATE TABLE results (
    id INTEGER PRIMARY KEY,
    track_id INTEGER NOT NULL REFERENCES tracks (id) ON DELETE CASCADE,
    parameters_id INTEGER NOT NULL REFERENCES parameters (id),
    made_at INTEGER NOT NULL,
    tool_version TEXT NOT NULL,
    analysis_seconds REAL NOT NULL,
    warnings TEXT NOT NULL,
    bpm REAL,
    raw_bpm REAL,
    is_steady INTEGER,
    tempo_confidence REAL,
    level_confidence REAL,
    phase_confidence REAL,
    bars_confidence REAL,
    key INTEGER,
    key_confidence REAL,
    tuning_cents REAL,
    details TEXT NOT NULL,
    UNIQUE (track_id, parameters_id)
);

CREATE TABLE grids (
    result_id INTEGER PRIMARY KEY REFERENCES results (id) ON DELETE CASCADE,
    beats BLOB NOT NULL
);

CREATE TABLE waves (
    result_id INTEGER PRIMARY KEY REFERENCES results (id) ON DELETE CASCADE,
    loud BLOB NOT NULL,
    dots BLOB NOT NULL,
    zoom BLOB NOT NULL
);

CREATE TABLE corrections (
    id INTEGER PRIMARY KEY,
    track_id INTEGER NOT NULL REFERENCES tracks (id) ON DELETE CASCADE,
    kind TEXT NOT NULL,
    value REAL,
    made_at INTEGER NOT NULL
);
CREATE INDEX corrections_by_track ON corrections (track_id, id);

CREATE TABLE failures (
    path BLOB PRIMARY KEY,
    size INTEGER NOT NULL,
    modified_ns INTEGER NOT NULL,
    kind TEXT NOT NULL,
    reason TEXT NOT NULL,
    attempts INTEGER NOT NULL,
    last_at INTEGER NOT NULL
) WITHOUT ROWID;
CREATE INDEX failures_of_music ON failures (path) WHERE kind <> 'not-audio';
)sql";

constexpr const char* kSearchColumn =
    "ALTER TABLE tracks ADD COLUMN search TEXT NOT NULL DEFAULT ''";

/** Path, artist and title, found by any three letters in a row. */
constexpr const char* kSearchIndex = R"sql(
CREATE VIRTUAL TABLE track_search USING fts5 (
    search, content = 'tracks', content_rowid = 'id', tokenize = 'trigram case_sensitive 1'
);
INSERT INTO track_search (track_search) VALUES ('rebuild');
CREATE TRIGGER search_after_insert AFTER INSERT ON tracks BEGIN
    INSERT INTO track_search (rowid, search) VALUES (new.id, new.search);
END;
CREATE TRIGGER search_after_delete AFTER DELETE ON tracks BEGIN
    INSERT INTO track_search (track_search, rowid, search) VALUES ('delete', old.id, old.search);
END;
CREATE TRIGGER search_after_update AFTER UPDATE OF search ON tracks
WHEN old.search <> new.search BEGIN
    INSERT INTO track_search (track_search, rowid, search) VALUES ('delete', old.id, old.search);
    INSERT INTO track_search (rowid, search) VALUES (new.id, new.search);
END;
)sql";

/** Corrections belong to a sound, so that they go where the music goes. Of copies that were
 *  corrected apart, the list that somebody worked on last is kept. */
constexpr const char* kSoundCorrections = R"sql(
ALTER TABLE corrections RENAME TO track_corrections;
CREATE TABLE corrections (
    id INTEGER PRIMARY KEY,
    audio_hash BLOB NOT NULL,
    kind TEXT NOT NULL,
    value REAL,
    made_at INTEGER NOT NULL
);
INSERT INTO corrections (id, audio_hash, kind, value, made_at)
SELECT c.id, t.audio_hash, c.kind, c.value, c.made_at
FROM track_corrections c JOIN tracks t ON t.id = c.track_id
WHERE c.track_id = (
    SELECT last.track_id FROM track_corrections last JOIN tracks copy ON copy.id = last.track_id
    WHERE copy.audio_hash = t.audio_hash ORDER BY last.id DESC LIMIT 1);
DROP TABLE track_corrections;
CREATE INDEX corrections_by_sound ON corrections (audio_hash, id);
)sql";

/** What a scan shows of itself and remembers of what it asked for. */
constexpr const char* kScanRecords = R"sql(
CREATE TABLE scan_progress (
    id INTEGER PRIMARY KEY CHECK (id = 1),
    planned INTEGER NOT NULL,
    done INTEGER NOT NULL,
    failed INTEGER NOT NULL,
    audio_seconds REAL NOT NULL,
    started_at INTEGER NOT NULL,
    written_at INTEGER NOT NULL,
    ended_at INTEGER
);
ALTER TABLE results ADD COLUMN asked_at INTEGER NOT NULL DEFAULT 0;
UPDATE results SET asked_at = made_at;
ALTER TABLE failures ADD COLUMN tried_limit REAL;
)sql";

void makeTables(SQLite::Database& database) {
    database.exec(kTables);
    database.exec("PRAGMA application_id = " + std::to_string(kApplicationId));
}

void addTextSearch(SQLite::Database& database) {
    database.exec(kSearchColumn);
    SQLite::Statement tracks(database, "SELECT id, path, artist, title FROM tracks");
    SQLite::Statement update(database, "UPDATE tracks SET search = ?2 WHERE id = ?1");
    while (tracks.executeStep()) {
        update.bind(1, tracks.getColumn(0).getInt64());
        update.bind(2, searchText(tracks.getColumn(1).getString(), tracks.getColumn(2).getString(),
                                  tracks.getColumn(3).getString()));
        update.exec();
        update.reset();
    }
    database.exec(kSearchIndex);
}

void letCorrectionsFollowTheSound(SQLite::Database& database) {
    database.exec(kSoundCorrections);
    database.exec(kScanRecords);
}

using Step = void (*)(SQLite::Database&);

/** Step i makes version i + 1. */
constexpr std::array<Step, kSchemaVersion> kSteps = {makeTables, addTextSearch,
                                                     letCorrectionsFollowTheSound};

}  // namespace

void takeSchemaSteps(SQLite::Database& database, int toVersion) {
    const int fromVersion = schemaVersionOf(database);
    for (int version = fromVersion; version < toVersion; ++version)
        kSteps.at(static_cast<std::size_t>(version))(database);
    database.exec("PRAGMA user_version = " + std::to_string(toVersion));
}

int schemaVersionOf(SQLite::Database& database) {
    return database.execAndGet("PRAGMA user_version").getInt();
}

}  // namespace catalogue
