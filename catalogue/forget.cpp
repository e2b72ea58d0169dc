// SPDX-License-Identifier: MIT
#include "catalogue/forget.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "catalogue/correction/Corrections.h"
#include "catalogue/dropStatements.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kFindTrack = "SELECT id FROM tracks WHERE path = ?1";
constexpr const char* kDropTrackOfPath = "DELETE FROM tracks WHERE path = ?1";

int executeFor(SQLite::Database& database, const char* sql, const std::string& path) {
    SQLite::Statement statement(database, sql);
    bindBytes(statement, 1, path);
    return statement.exec();
}

}  // namespace

bool forget(const Catalogue& catalogue, const std::string& path, bool withCorrections) {
    return guarded(catalogue.path(), [&] {
        SQLite::Database& database = catalogue.database();
        SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
        SQLite::Statement find(database, kFindTrack);
        bindBytes(find, 1, path);
        if (withCorrections && find.executeStep())
            dropCorrections(database, find.getColumn(0).getInt64());
        find.reset();
        const int tracks = executeFor(database, kDropTrackOfPath, path);
        const int failures = executeFor(database, kDropFailure, path);
        transaction.commit();
        return tracks + failures > 0;
    });
}

}  // namespace catalogue
