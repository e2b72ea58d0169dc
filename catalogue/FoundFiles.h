// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "catalogue/Scan.h"

namespace catalogue {

/** What a scan found, in a temporary table: any number of files in little memory. Every call may
 *  throw SQLite::Exception. */
class FoundFiles {
public:
    explicit FoundFiles(const Catalogue& catalogue);
    ~FoundFiles();
    FoundFiles(const FoundFiles&) = delete;
    FoundFiles& operator=(const FoundFiles&) = delete;

    void add(const std::string& path, const FileState& state, double weight);
    bool contains(const std::string& path);

    /** Compares the files with the catalogue and orders the work. */
    Scan::Counts settle(const Scan::Plan& plan);

    /** The heaviest file that was not taken yet. */
    std::optional<Scan::Work> take();

private:
    struct Statements;

    void orderWork(const Scan::Plan& plan);
    Scan::Counts count() const;

    const Catalogue& catalogue_;
    std::unique_ptr<Statements> statements_;
    std::int64_t rank_ = 0;
};

}  // namespace catalogue
