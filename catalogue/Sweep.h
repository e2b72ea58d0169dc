// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/FoundFiles.h"
#include "catalogue/Scan.h"
#include "catalogue/WriteBatch.h"

namespace catalogue {

/** The end of a scan: marks what is gone below its roots, or deletes it. */
class Sweep {
public:
    Sweep(SQLite::Database& database, FoundFiles& found, WriteBatch& batch)
        : database_(database), found_(found), batch_(batch) {}

    /** @throws SQLite::Exception, CatalogueError, Interrupted */
    Scan::Ending run(const std::vector<Scan::Root>& roots, Scan::Pruning pruning);

private:
    struct GoneTrack {
        std::int64_t id;
        bool isMarked;
        bool isAlone;
    };

    void sweep(const std::string& root);
    std::vector<GoneTrack> goneTracks(const std::string& root);
    std::vector<std::string> goneFailures(const std::string& root);
    void endTracks(const std::vector<GoneTrack>& gone);
    bool isPruned(const GoneTrack& track);
    void prune(std::int64_t track);
    void dropFailures(const std::vector<std::string>& paths);
    bool isAlone(const std::string& path);

    SQLite::Database& database_;
    FoundFiles& found_;
    WriteBatch& batch_;
    Scan::Pruning pruning_ = Scan::Pruning::none;
    Scan::Ending ending_;
    std::vector<std::string> emptyRoots_;
    std::string lastFolder_;
    bool isLastEmpty_ = false;
};

}  // namespace catalogue
