// SPDX-License-Identifier: MIT
#include "catalogue/FoundFiles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/fileExists.h"
#include "catalogue/sqlBinding.h"

namespace catalogue {

namespace {

constexpr const char* kTables = R"sql(
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
constexpr const char* kOfSize = "SELECT path FROM tracks WHERE size = ?1";

/** ?1: the parameters; ?2: failures are tried again; ?3: so is everything that has a result. */
constexpr const char* kOrderWork = R"sql(
INSERT INTO temp.work (path, size, modified_ns, weight)
SELECT path, size, modified_ns, weight FROM temp.found f
WHERE (?3 OR NOT EXISTS (
        SELECT 1 FROM tracks t
        JOIN results r ON r.track_id = t.id
        JOIN parameters p ON p.id = r.parameters_id
        WHERE t.path = f.path AND t.size = f.size AND t.modified_ns = f.modified_ns
            AND p.json = ?1))
    AND (?2 OR NOT EXISTS (
        SELECT 1 FROM failures x
        WHERE x.path = f.path AND x.size = f.size AND x.modified_ns = f.modified_ns))
ORDER BY weight DESC, path)sql";

constexpr const char* kNotGone = R"sql(
UPDATE tracks SET gone_at = NULL
WHERE is_gone = 1 AND EXISTS (SELECT 1 FROM temp.found f WHERE f.path = tracks.path))sql";

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
    catalogue_.database().exec(kTables);
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

Scan::Counts FoundFiles::settle(const Scan::Plan& plan) {
    catalogue_.database().exec("COMMIT");
    orderWork(plan);
    catalogue_.database().exec(kNotGone);
    return count();
}

void FoundFiles::orderWork(const Scan::Plan& plan) {
    SQLite::Statement order(catalogue_.database(), kOrderWork);
    order.bind(1, plan.parameters);
    order.bind(2, plan.retriesFailures ? 1 : 0);
    order.bind(3, plan.rescansAll ? 1 : 0);
    order.exec();
}

Scan::Counts FoundFiles::count() const {
    SQLite::Database& database = catalogue_.database();
    Scan::Counts counts;
    counts.found = database.execAndGet("SELECT count(*) FROM temp.found").getInt64();
    SQLite::Statement work(database, "SELECT count(*), total(weight) FROM temp.work");
    work.executeStep();
    counts.toDo = work.getColumn(0).getInt64();
    counts.weightToDo = work.getColumn(1).getDouble();
    counts.known = counts.found - counts.toDo;
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
    SQLite::Statement& ofSize = statements_->ofSize;
    const ResetAfter resetOfSize(ofSize);
    ofSize.bind(1, work.state.size);
    while (!work.mayBeMoved && ofSize.executeStep()) {
        const std::string path = ofSize.getColumn(0).getString();
        work.mayBeMoved = path == work.path || (!contains(path) && !fileExists(path));
    }
    return work;
}

}  // namespace catalogue
