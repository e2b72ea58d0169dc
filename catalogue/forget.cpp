// SPDX-License-Identifier: MIT
#include "catalogue/forget.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

Forgetting forget(const Catalogue& catalogue, const std::string& path, bool alsoCorrected) {
    return guarded(catalogue.path(), [&] {
        SQLite::Database& database = catalogue.database();
        SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
        SQLite::Statement isCorrected(database, "SELECT is_corrected FROM tracks WHERE path = ?1");
        bindBytes(isCorrected, 1, path);
        if (isCorrected.executeStep() && isCorrected.getColumn(0).getInt() != 0 && !alsoCorrected)
            return Forgetting::corrected;
        isCorrected.reset();
        int deleted = 0;
        for (const char* sql :
             {"DELETE FROM tracks WHERE path = ?1", "DELETE FROM failures WHERE path = ?1"}) {
            SQLite::Statement statement(database, sql);
            bindBytes(statement, 1, path);
            deleted += statement.exec();
        }
        transaction.commit();
        return deleted > 0 ? Forgetting::done : Forgetting::unknown;
    });
}

}  // namespace catalogue
