// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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

    /** Whether the file was not found and does not exist any more. */
    bool isGone(const std::string& path);

    /** Compares the files with the catalogue and orders the work. */
    Scan::Counts settle(const Scan::Plan& plan);

    /** Notes that the results of these parameters are asked for where tracks were found unchanged
     *  that have others besides. @return those tracks */
    std::vector<std::int64_t> askFor(const std::string& parameters);

    /** The heaviest file that was not taken yet. */
    std::optional<Scan::Work> take();

private:
    struct Statements;

    void orderWork(const Scan::Plan& plan);
    Scan::Counts count(const Scan::Plan& plan) const;
    bool mayBeKnown(const Scan::Work& work);

    const Catalogue& catalogue_;
    std::unique_ptr<Statements> statements_;
    std::int64_t rank_ = 0;
};

}  // namespace catalogue
