// SPDX-License-Identifier: MIT
#include "catalogue/FoundFiles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/TrackStore.h"
#include "catalogue/fileExists.h"
#include "catalogue/sqlBinding.h"

namespace catalogue {

namespace {

constexpr const char* kFoundTables = R"sql(
DROP TABLE IF EXISTS temp.found;
DROP TABLE IF EXISTS temp.work;
CREATE TEMPORARY TABLE found (
    path BLOB PRIMARY KEY, size INTEGER, modified_ns INTEGER, weight REAL) WITHOUT ROWID;
CREATE TEMPORARY TABLE work (
    rank INTEGER PRIMARY KEY, path BLOB, size INTEGER, modified_ns INTEGER, weight REAL);
)sql";

constexpr const char* kAdd = "INSERT OR IGNORE INTO temp.found VALUES (?1, ?2, ?3, ?4)";
constexpr const char* kContains = "SELECT 1 FROM temp.found WHERE path = ?1";
constexpr const char* kTake =
    "SELECT path, size, modified_ns, weight FROM temp.work WHERE rank = ?1";
constexpr const char* kOfSize =
    "SELECT path, modified_ns, size FROM tracks WHERE size = ?1 OR path = ?2";

/** A failure x of a file f that is not tried again. ?2: all failures are; ?4, ?5: how many bytes
 *  and seconds a file may take now. */
constexpr const char* kStands = R"sql(
    NOT ?2 AND x.size = f.size AND x.modified_ns = f.modified_ns
    AND (x.kind <> 'memory-limit' OR ifnull(x.tried_limit, 0) >= ?4)
    AND (x.kind <> 'time-limit' OR ifnull(x.tried_limit, 0) >= ?5))sql";

/** ?1: the parameters; ?3: everything that has a result is done again. */
constexpr const char* kOrderWork = R"sql(
INSERT INTO temp.work (path, size, modified_ns, weight)
SELECT path, size, modified_ns, weight FROM temp.found f
WHERE (?3 OR NOT EXISTS (
        SELECT 1 FROM tracks t
        JOIN results r ON r.track_id = t.id
        JOIN parameters p ON p.id = r.parameters_id
        WHERE t.path = f.path AND t.size = f.size AND t.modified_ns = f.modified_ns
            AND p.json = ?1))
    AND NOT EXISTS (SELECT 1 FROM failures x WHERE x.path = f.path AND )sql";
constexpr const char* kHeaviestFirst = ") ORDER BY weight DESC, path";

/** Driven by the failures of music, which are few. */
constexpr const char* kCountFailures = R"sql(
SELECT count(*) FROM failures x CROSS JOIN temp.found f ON f.path = x.path
WHERE x.kind <> 'not-audio' AND )sql";

constexpr const char* kAskFor = R"sql(
UPDATE results SET asked_at = max(?2, (
    SELECT max(asked_at) + 1 FROM results other WHERE other.track_id = results.track_id))
WHERE id IN (
    SELECT r.id FROM temp.found f
    JOIN tracks t ON t.path = f.path AND t.size = f.size AND t.modified_ns = f.modified_ns
    JOIN results r ON r.track_id = t.id
    JOIN parameters p ON p.id = r.parameters_id
    WHERE p.json = ?1 AND r.asked_at <= (
        SELECT max(asked_at) FROM results other
        WHERE other.track_id = t.id AND other.id <> r.id))
RETURNING track_id)sql";

constexpr const char* kNotGone = R"sql(
UPDATE tracks SET gone_at = NULL
WHERE is_gone = 1 AND EXISTS (SELECT 1 FROM temp.found f WHERE f.path = tracks.path))sql";

void bindRetries(SQLite::Statement& statement, const Scan::Plan& plan) {
    statement.bind(2, plan.retriesFailures ? 1 : 0);
    statement.bind(4, plan.memoryLimit);
    statement.bind(5, plan.timeLimit);
}

}  // namespace

struct FoundFiles::Statements {
    explicit Statements(SQLite::Database& database)
        : add(database, kAdd), contains(database, kContains), take(database, kTake),
          ofSize(database, kOfSize) {}

    SQLite::Statement add;
    SQLite::Statement contains;
    SQLite::Statement take;
    SQLite::Statement ofSize;
};

FoundFiles::FoundFiles(const Catalogue& catalogue) : catalogue_(catalogue) {
    catalogue_.database().exec(kFoundTables);
    statements_ = std::make_unique<Statements>(catalogue_.database());
    // One transaction for all; it writes to the temporary tables only and locks nobody out.
    catalogue_.database().exec("BEGIN");
}

FoundFiles::~FoundFiles() = default;

void FoundFiles::add(const std::string& path, const FileState& state, double weight) {
    SQLite::Statement& add = statements_->add;
    bindBytes(add, 1, path);
    add.bind(2, state.size);
    add.bind(3, state.modifiedNanoseconds);
    add.bind(4, weight);
    execute(add);
}

bool FoundFiles::contains(const std::string& path) {
    SQLite::Statement& contains = statements_->contains;
    const ResetAfter reset(contains);
    bindBytes(contains, 1, path);
    return contains.executeStep();
}

bool FoundFiles::isGone(const std::string& path) {
    return !contains(path) && !fileExists(path);
}

Scan::Counts FoundFiles::settle(const Scan::Plan& plan) {
    catalogue_.database().exec("COMMIT");
    orderWork(plan);
    catalogue_.database().exec(kNotGone);
    return count(plan);
}

std::vector<std::int64_t> FoundFiles::askFor(const std::string& parameters) {
    std::vector<std::int64_t> tracks;
    SQLite::Database& database = catalogue_.database();
    // With one set of parameters no track has a choice.
    if (database.execAndGet("SELECT count(*) FROM parameters").getInt() < 2) return tracks;
    SQLite::Statement askFor(database, kAskFor);
    askFor.bind(1, parameters);
    askFor.bind(2, secondsNow());
    while (askFor.executeStep()) tracks.push_back(askFor.getColumn(0).getInt64());
    return tracks;
}

void FoundFiles::orderWork(const Scan::Plan& plan) {
    SQLite::Statement order(catalogue_.database(),
                            std::string(kOrderWork) + kStands + kHeaviestFirst);
    bindRetries(order, plan);
    order.bind(1, plan.parameters);
    order.bind(3, plan.rescansAll ? 1 : 0);
    order.exec();
}

Scan::Counts FoundFiles::count(const Scan::Plan& plan) const {
    SQLite::Database& database = catalogue_.database();
    Scan::Counts counts;
    counts.found = database.execAndGet("SELECT count(*) FROM temp.found").getInt64();
    SQLite::Statement work(database, "SELECT count(*), total(weight) FROM temp.work");
    work.executeStep();
    counts.toDo = work.getColumn(0).getInt64();
    counts.weightToDo = work.getColumn(1).getDouble();
    counts.known = counts.found - counts.toDo;
    SQLite::Statement failures(database, std::string(kCountFailures) + kStands);
    bindRetries(failures, plan);
    failures.executeStep();
    counts.knownFailures = failures.getColumn(0).getInt64();
    return counts;
}

std::optional<Scan::Work> FoundFiles::take() {
    SQLite::Statement& take = statements_->take;
    const ResetAfter reset(take);
    take.bind(1, ++rank_);
    if (!take.executeStep()) return std::nullopt;
    Scan::Work work;
    work.path = take.getColumn(0).getString();
    work.state = {take.getColumn(1).getInt64(), take.getColumn(2).getInt64()};
    work.weight = take.getColumn(3).getDouble();
    work.mayBeKnown = mayBeKnown(work);
    return work;
}

bool FoundFiles::mayBeKnown(const Scan::Work& work) {
    SQLite::Statement& ofSize = statements_->ofSize;
    const ResetAfter reset(ofSize);
    ofSize.bind(1, work.state.size);
    bindBytes(ofSize, 2, work.path);
    while (ofSize.executeStep()) {
        const std::string path = ofSize.getColumn(0).getString();
        const FileState state = {ofSize.getColumn(2).getInt64(), ofSize.getColumn(1).getInt64()};
        // A file that has not changed lacks a result of these parameters: its sound is known.
        if (path == work.path ? state != work.state : isGone(path)) return true;
    }
    return false;
}

}  // namespace catalogue
