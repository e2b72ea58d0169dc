// SPDX-License-Identifier: MIT
#include "catalogue/query/runningScan.h"

#include <cerrno>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kUnfinished =
    "SELECT planned, done, failed, audio_seconds, started_at, written_at FROM scan_progress "
    "WHERE ended_at IS NULL";

}  // namespace

std::optional<ScanProgress> unfinishedScan(const Catalogue& catalogue) {
    return guarded(catalogue.path(), [&]() -> std::optional<ScanProgress> {
        SQLite::Statement select(catalogue.database(), kUnfinished);
        if (!select.executeStep()) return std::nullopt;
        return ScanProgress{select.getColumn(0).getInt64(), select.getColumn(1).getInt64(),
                            select.getColumn(2).getInt64(), select.getColumn(3).getDouble(),
                            select.getColumn(4).getInt64(), select.getColumn(5).getInt64()};
    });
}

bool isBeingScanned(const Catalogue& catalogue) {
    const std::string lock = catalogue.filePath() + ".lock";
    const int descriptor = open(lock.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isHeld = flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(descriptor);
    return isHeld;
}

}  // namespace catalogue
