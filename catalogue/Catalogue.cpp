// SPDX-License-Identifier: MIT
#include "catalogue/Catalogue.h"

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/TrackStore.h"
#include "catalogue/schema.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr int kBusyMilliseconds = 10000;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw CatalogueError(base::displayName(path) + ": " + reason);
}

/** SQLite takes some names for something else than a file: ":memory:", "file:…". */
std::string plainName(const std::string& path) {
    return path.starts_with('/') ? path : "./" + path;
}

std::string withoutLinks(const std::string& path) {
    std::error_code failure;
    const bool isLink = std::filesystem::is_symlink(plainName(path), failure);
    if (!isLink) return path;
    const auto file = std::filesystem::canonical(plainName(path), failure);
    return failure ? path : file.string();
}

/** As SQLite reads it: every byte but letters, digits and a few signs as %XX. */
std::string immutableUri(const std::string& path) {
    std::string uri = "file:";
    for (const char character : std::filesystem::absolute(path).string()) {
        const bool isPlain = std::isalnum(static_cast<unsigned char>(character)) != 0 ||
                             std::string_view("/-._~").find(character) != std::string_view::npos;
        uri += isPlain ? std::string(1, character)
                       : fmt::format("%{:02X}", static_cast<unsigned char>(character));
    }
    return uri + "?immutable=1";
}

bool isMissingOrEmpty(const std::string& path) {
    if (path.empty()) refuse(path, base::kEmptyName);
    struct stat status {};
    if (stat(plainName(path).c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) refuse(path, "is a folder, not a catalogue");
        return status.st_size == 0;
    }
    if (errno == ENOENT) return true;
    refuse(path, "cannot be opened: " + base::systemReason(errno));
}

bool hasPendingLog(const std::string& path) {
    struct stat status {};
    const std::string log = plainName(withoutLinks(path)) + "-wal";
    return stat(log.c_str(), &status) == 0 && status.st_size > 0;
}

using Database = std::unique_ptr<SQLite::Database>;

Database openWith(const std::string& name, int flags) {
    auto database = std::make_unique<SQLite::Database>(name, flags, kBusyMilliseconds);
    // Where the file cannot be used SQLite says so at the first reading.
    database->execAndGet("SELECT count(*) FROM sqlite_schema");
    return database;
}

/** Whether SQLite could not make the files that readers share. */
bool cannotShare(int code, bool isBrief) {
    if (code == SQLITE_CANTOPEN || code == SQLITE_READONLY) return true;
    return isBrief && (code == SQLITE_FULL || code == SQLITE_IOERR);
}

/** Where nothing may be written, what is in the file stays, as long as no log waits to be taken
 *  over. On a full disk it stays until there is room again. */
Database openToRead(const std::string& path, bool isBrief) {
    try {
        return openWith(plainName(path), SQLite::OPEN_READONLY);
    } catch (const SQLite::Exception& error) {
        if (!cannotShare(error.getErrorCode(), isBrief) || hasPendingLog(path)) throw;
        return openWith(immutableUri(path), SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    }
}

/** @throws CatalogueError unless the file is a catalogue that this program knows */
void requireCatalogue(SQLite::Database& database, const std::string& path) {
    if (database.execAndGet("PRAGMA application_id").getInt() != kApplicationId)
        refuse(path, "is no catalogue of Beat Atlas");
    const int version = schemaVersionOf(database);
    if (version > kSchemaVersion)
        refuse(path, fmt::format("is a catalogue of version {}; this program knows versions up to "
                                 "{}",
                                 version, kSchemaVersion));
    if (version < 1) refuse(path, "is damaged");
}

/** Waits until a file, or the names in a folder, are on the disk. @return 0, or why it failed */
int syncToDisk(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isSynced = descriptor >= 0 && fsync(descriptor) == 0;
    const int failure = errno;
    if (descriptor >= 0) close(descriptor);
    return isSynced ? 0 : failure;
}

/** Keeps the file as it is beside itself, whole or not at all. */
void copyBeside(const std::string& path, int version) {
    const std::string copy = fmt::format("{}.version{}", plainName(path), version);
    const std::string draft = copy + ".draft";
    std::error_code ignored;
    std::filesystem::remove(draft, ignored);
    {
        SQLite::Database reader(plainName(path), SQLite::OPEN_READONLY, kBusyMilliseconds);
        SQLite::Statement copyAll(reader, "VACUUM INTO ?");
        copyAll.bind(1, draft);
        try {
            copyAll.exec();
        } catch (const SQLite::Exception&) {
            std::filesystem::remove(draft, ignored);
            throw;
        }
    }
    if (const int failure = syncToDisk(draft); failure != 0)
        refuse(draft, "cannot be written: " + base::systemReason(failure));
    std::filesystem::rename(draft, copy);
    // Not every file system can do this, nor everybody who may write into the folder: the copy is
    // no worse for it as long as the power lasts.
    syncToDisk(std::filesystem::path(copy).parent_path());
}

/** Another program may do the same at the same time: what the version is counts once nobody else
 *  can write. */
void bringUpToDate(SQLite::Database& database, const std::string& path) {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const int version = schemaVersionOf(database);
    if (version == kSchemaVersion) return;
    copyBeside(path, version);
    takeSchemaSteps(database);
    TrackStore(database, path).refreshChoices();
    transaction.commit();
}

void makeNew(SQLite::Database& database) {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    if (schemaVersionOf(database) > 0) return;
    takeSchemaSteps(database);
    transaction.commit();
}

/** SQLite would open such a file to be read. */
void requireWritable(const std::string& path, bool isNew) {
    if (!isNew && access(plainName(path).c_str(), W_OK) != 0) refuse(path, "may not be written to");
    // The log lies beside the file.
    const std::filesystem::path folder = std::filesystem::path(plainName(path)).parent_path();
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        refuse(path, "its folder cannot be written to: " + base::systemReason(errno));
}

Database openToWrite(const std::string& path, bool creates) {
    const bool isNew = isMissingOrEmpty(path);
    if (isNew && !creates) refuse(path, "there is no such catalogue");
    requireWritable(path, isNew);
    Database database =
        openWith(plainName(path), SQLite::OPEN_READWRITE | (isNew ? SQLite::OPEN_CREATE : 0));
    // A program that was killed as it made the file leaves a journal, by which there is nothing in
    // the file once it is open.
    if (isMissingOrEmpty(path)) {
        if (!creates) refuse(path, "there is no such catalogue");
        makeNew(*database);
    }
    requireCatalogue(*database, path);
    if (schemaVersionOf(*database) < kSchemaVersion) bringUpToDate(*database, path);
    database->execAndGet("PRAGMA journal_mode = WAL");
    // Each commit waits for the disk: a power cut loses nothing that was committed.
    database->exec("PRAGMA synchronous = FULL");
    database->exec("PRAGMA foreign_keys = ON");
    return database;
}

Database openExisting(const std::string& path, bool isBrief) {
    if (isMissingOrEmpty(path)) refuse(path, "there is no such catalogue");
    Database database = openToRead(path, isBrief);
    requireCatalogue(*database, path);
    if (schemaVersionOf(*database) < kSchemaVersion)
        refuse(path, "is a catalogue of an older version; any command that may write it brings it "
                     "up to date");
    return database;
}

}  // namespace

Catalogue::Catalogue(const std::string& path, Access access) : path_(path) {
    const auto open = [&] {
        return access == Access::read || access == Access::readBriefly
                   ? openExisting(path, access == Access::readBriefly)
                   : openToWrite(path, access == Access::create);
    };
    database_ = guarded(path, open);
}

Catalogue::~Catalogue() = default;

std::string Catalogue::filePath() const {
    return withoutLinks(path_);
}

bool isFileOf(const std::string& catalogue, const std::string& path) {
    if (!path.starts_with(catalogue)) return false;
    const std::string_view rest = std::string_view(path).substr(catalogue.size());
    return rest.empty() || rest == "-wal" || rest == "-shm" || rest == "-journal" ||
           rest == ".lock";
}

std::string Catalogue::structuralFault() const {
    return guarded(path_, [&] {
        const std::string verdict = database_->execAndGet("PRAGMA quick_check(1)").getString();
        // A heading above it names the one database that there is.
        return verdict == "ok" ? std::string() : verdict.substr(verdict.rfind('\n') + 1);
    });
}

void Catalogue::requireInPlace() const {
    int hasMoved = 0;
    sqlite3_file_control(database_->getHandle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    if (hasMoved != 0) refuse(path_, "was moved or deleted while it was being written");
}

}  // namespace catalogue
