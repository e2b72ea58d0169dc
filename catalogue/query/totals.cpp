// SPDX-License-Identifier: MIT
#include "catalogue/query/totals.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

// Each is counted along an index.
constexpr const char* kTotals = R"sql(
SELECT (SELECT count(*) FROM tracks WHERE is_gone = 0),
    (SELECT count(*) FROM tracks WHERE is_gone = 1),
    (SELECT count(*) FROM tracks WHERE is_gone = 0 AND is_corrected = 1),
    (SELECT count(*) FROM failures WHERE kind <> 'not-audio'))sql";

}  // namespace

Totals totalsOf(const Catalogue& catalogue) {
    return guarded(catalogue.path(), [&] {
        SQLite::Statement select(catalogue.database(), kTotals);
        select.executeStep();
        return Totals{select.getColumn(0).getInt64(), select.getColumn(1).getInt64(),
                      select.getColumn(2).getInt64(), select.getColumn(3).getInt64()};
    });
}

std::int64_t changeNumber(const Catalogue& catalogue) {
    return guarded(catalogue.path(), [&] {
        return catalogue.database().execAndGet("PRAGMA data_version").getInt64();
    });
}

}  // namespace catalogue
