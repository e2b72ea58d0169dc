// SPDX-License-Identifier: MIT
#include "catalogue/ScanRecord.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/TrackStore.h"

namespace catalogue {

namespace {

constexpr const char* kBegin = R"sql(
INSERT OR REPLACE INTO scan_progress
    (id, planned, done, failed, audio_seconds, started_at, written_at, ended_at)
VALUES (1, ?1, 0, 0, 0, ?2, ?2, NULL))sql";

constexpr const char* kWrite = R"sql(
UPDATE scan_progress SET done = ?1, failed = ?2, audio_seconds = ?3, written_at = ?4)sql";

constexpr const char* kEnd = "UPDATE scan_progress SET ended_at = ?1";

}  // namespace

void ScanRecord::begin(std::int64_t planned) {
    SQLite::Statement begin(database_, kBegin);
    begin.bind(1, planned);
    begin.bind(2, secondsNow());
    begin.exec();
    isRunning_ = true;
}

void ScanRecord::addDone(double audioSeconds) {
    ++done_;
    audioSeconds_ += audioSeconds;
}

void ScanRecord::addFailed() {
    ++done_;
    ++failed_;
}

void ScanRecord::write() {
    if (!isRunning_) return;
    SQLite::Statement write(database_, kWrite);
    write.bind(1, done_);
    write.bind(2, failed_);
    write.bind(3, audioSeconds_);
    write.bind(4, secondsNow());
    write.exec();
}

void ScanRecord::end() {
    if (!isRunning_) return;
    SQLite::Statement end(database_, kEnd);
    end.bind(1, secondsNow());
    end.exec();
    isRunning_ = false;
}

}  // namespace catalogue
