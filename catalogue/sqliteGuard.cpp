// SPDX-License-Identifier: MIT
#include "catalogue/sqliteGuard.h"

#include <sqlite3.h>

#include "base/displayName.h"

namespace catalogue {

namespace {

std::string reasonOf(const SQLite::Exception& error) {
    switch (error.getErrorCode()) {
    case SQLITE_FULL:
        return "cannot be written: the disk is full";
    case SQLITE_READONLY:
        return "may not be written to";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "is being written by another program";
    case SQLITE_NOTADB:
        return "is no catalogue of Beat Atlas";
    case SQLITE_CORRUPT:
        return "is damaged";
    case SQLITE_CANTOPEN:
        return "cannot be opened";
    case SQLITE_IOERR:
        return "cannot be read or written";
    default:
        return std::string("fails: ") + base::displayName(error.what());
    }
}

}  // namespace

CatalogueError failureOf(const std::string& path, const SQLite::Exception& error) {
    return CatalogueError{base::displayName(path) + ": " + reasonOf(error)};
}

}  // namespace catalogue
