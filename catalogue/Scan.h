// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Analysed.h"
#include "catalogue/Catalogue.h"

namespace catalogue {

/** One scan as the catalogue sees it: found() for each file, settle(), then next() and one of
 *  put(), putFailure() and adoptMoved() for each file that is to be done, and finish().
 *
 *  Holds a lock on FILE.lock beside the catalogue: one scan at a time. Commits what it is given in
 *  transactions of bounded size, and what is left when it is destroyed. */
class Scan {
public:
    struct Plan {
        /** parametersText() of the analysis. */
        std::string parameters;
        /** Files that failed are tried again; otherwise only when they have changed. */
        bool retriesFailures = false;
        /** Files are analysed even if a result is there. */
        bool rescansAll = false;
    };

    /** @throws ScanRunning while another scan of this catalogue runs; CatalogueError */
    Scan(Catalogue& catalogue, Plan plan);
    ~Scan();
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

    /** A file that may be a track. The same path twice counts once.
     *  @param path    absolute, any bytes
     *  @param weight  by which the work is ordered, the heaviest first: about its seconds of work */
    void found(const std::string& path, const FileState& state, double weight);

    struct Counts {
        std::int64_t found = 0;
        std::int64_t known = 0;
        std::int64_t toDo = 0;
        double weightToDo = 0.0;
    };

    /** After the last file was found. Known is a file of the same path, size and time with a result
     *  for these parameters, and one that failed in this state before. */
    Counts settle();

    struct Work {
        std::string path;
        FileState state;
        double weight = 0.0;
        /** A track of this size is no longer where it was: this file may be it. */
        bool mayBeMoved = false;
    };

    /** The heaviest file that next() has not named yet; nothing when all have been. */
    std::optional<Work> next();

    /** Whether a track of this sound is no longer where it was. It is then this path's, with its
     *  results and corrections.
     *  @return that there is a result for these parameters: nothing remains to be done */
    bool adoptMoved(const std::string& path, const FileState& state, const AudioHash& hash);

    /** Adds a track or replaces its result for these parameters; a track that moved is recognised
     *  by its sound as in adoptMoved(). @throws CatalogueError, the disk being full for instance */
    void put(const Analysed& analysed);

    /** Notes that a file could not be analysed; earlier results of it stay. */
    void putFailure(const std::string& path, const FileState& state, const Failure& failure);

    /** Commits what was put until now: before a long wait, say. */
    void commit();

    enum class Pruning {
        none,         ///< tracks that are gone stay in the catalogue, marked
        uncorrected,  ///< they are deleted, unless somebody has corrected them
        all,          ///< they are deleted, with their corrections
    };
    struct Ending {
        std::int64_t gone = 0;           ///< tracks below the roots that do not exist any more
        std::int64_t pruned = 0;         ///< of them deleted
        std::int64_t keptCorrected = 0;  ///< of them kept for their corrections
    };

    /** Marks as gone the tracks that lie at or below a root, were not found, and do not exist any
     *  more. @param roots  absolute paths that were walked to their end
     *  @throws CatalogueError; Interrupted */
    Ending finish(const std::vector<std::string>& roots, Pruning pruning);

private:
    class Storage;
    std::string path_;
    std::unique_ptr<Storage> storage_;
};

}  // namespace catalogue
