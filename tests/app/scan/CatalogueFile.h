// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

/** A catalogue as any program of SQLite sees it. */
class CatalogueFile {
public:
    explicit CatalogueFile(std::string path) : path_(std::move(path)) {}

    /** The first value of a query, as text; empty where there is no row or the value is null. */
    std::string value(const std::string& query) const;

    std::int64_t count(const std::string& query) const { return std::stoll(value(query)); }

    /** The first column of all rows. */
    std::vector<std::string> column(const std::string& query) const;

    /** What SQLite says of the whole file: "ok". */
    std::string integrity() const { return value("PRAGMA integrity_check"); }

    /** Everything that two scans of the same files have in common: tracks, results, failures,
     *  without the times at which and in which they were made. */
    std::vector<std::string> content() const;

private:
    std::string path_;
};

}  // namespace test
