// SPDX-License-Identifier: MIT
#include "catalogue/WriteBatch.h"

#include <SQLiteCpp/Database.h>
#include <sqlite3.h>

namespace catalogue {

namespace {

constexpr int kMostRecords = 200;
constexpr std::chrono::milliseconds kLongest{1500};

/** A full disk ends a transaction on its own. */
bool isInTransaction(const Catalogue& catalogue) {
    return sqlite3_get_autocommit(catalogue.database().getHandle()) == 0;
}

}  // namespace

WriteBatch::~WriteBatch() {
    if (isInTransaction(catalogue_)) catalogue_.database().tryExec("ROLLBACK");
}

void WriteBatch::begin() {
    if (isInTransaction(catalogue_)) return;
    catalogue_.database().exec("BEGIN IMMEDIATE");
    records_ = 0;
    begin_ = std::chrono::steady_clock::now();
}

void WriteBatch::recordWritten() {
    ++records_;
    if (records_ >= kMostRecords || std::chrono::steady_clock::now() - begin_ >= kLongest) commit();
}

void WriteBatch::commit() {
    if (!isInTransaction(catalogue_)) return;
    if (beforeCommit_) beforeCommit_();
    catalogue_.database().exec("COMMIT");
    catalogue_.requireInPlace();
}

}  // namespace catalogue
