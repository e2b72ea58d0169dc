// SPDX-License-Identifier: MIT
#include "catalogue/query/overview.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/blobCodecs.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kOverview =
    "SELECT w.loud FROM tracks t JOIN waves w ON w.result_id = t.result_id WHERE t.id = ?1";

}  // namespace

std::vector<beatatlas::track::WavePoint> overviewOf(const Catalogue& catalogue,
                                                    std::int64_t track) {
    return guarded(catalogue.path(), [&]() -> std::vector<beatatlas::track::WavePoint> {
        SQLite::Statement select(catalogue.database(), kOverview);
        select.bind(1, track);
        if (!select.executeStep()) return {};
        return decodeWave(select.getColumn(0).getString());
    });
}

}  // namespace catalogue
