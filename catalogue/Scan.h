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
 *  put(), putFailure() and adopt() for each file that is to be done, and finish().
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
        /** Bytes and seconds that any file may take: what failed by less is tried again. */
        double memoryLimit = 0.0;
        double timeLimit = 0.0;
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
        /** Of them files of music that failed before. */
        std::int64_t knownFailures = 0;
        std::int64_t toDo = 0;
        double weightToDo = 0.0;
    };

    /** After the last file was found. Known is a file of the same path, size and time with a result
     *  for these parameters, which lists show from now on, and one that failed in this state
     *  before. From here on the catalogue says how far the scan is. */
    Counts settle();

    struct Work {
        std::string path;
        FileState state;
        double weight = 0.0;
        /** Its sound may be known: a track of this size is no longer where it was, or the path had
         *  one before the file changed. */
        bool mayBeKnown = false;
    };

    /** The heaviest file that next() has not named yet; nothing when all have been. */
    std::optional<Work> next();

    struct Adoption {
        /** There is a result for these parameters: nothing remains to be done. */
        bool isDone = false;
        /** The track was elsewhere before. */
        bool isMoved = false;
        /** The path held another sound, whose corrections are kept with that one. */
        bool leavesCorrections = false;
    };

    /** Looks for a track of this sound that is here, or is no longer where it was. It is then this
     *  path's, with its results. @param format  of the file as it is now, with its tags */
    Adoption adopt(const std::string& path, const FileState& state, const AudioHash& hash,
                   const base::TrackFormat& format);

    /** Adds a track or replaces its result for these parameters; a track that moved is recognised
     *  by its sound as in adopt(). Corrections of what the file held before are carried over as
     *  carryCorrections() says.
     *  @return that they were left behind
     *  @throws CatalogueError, the disk being full for instance */
    bool put(const Analysed& analysed);

    /** Notes that a file could not be analysed; earlier results of it stay. Of one that is no more
     *  there is nothing to note. */
    void putFailure(const std::string& path, const FileState& state, const Failure& failure);

    /** Commits what was put until now: before a long wait, say. */
    void commit();

    enum class Pruning {
        none,         ///< tracks that are gone stay in the catalogue, marked
        uncorrected,  ///< they are deleted, unless somebody has corrected them
        all,          ///< they are deleted, with their corrections
    };
    struct Root {
        /** Absolute, and walked to its end. */
        std::string path;
        /** Something was found there. Where nothing is, a disk may not be mounted. */
        bool holdsFiles = true;
    };
    struct Ending {
        std::int64_t gone = 0;           ///< tracks below the roots that do not exist any more
        std::int64_t pruned = 0;         ///< of them deleted
        std::int64_t keptCorrected = 0;  ///< of them kept for their corrections
        std::int64_t keptAbsent = 0;     ///< of them kept because nothing is left around them
    };

    /** Marks as gone the tracks that lie at or below a root, were not found, and do not exist any
     *  more. None is deleted below a root or in a folder in which nothing is: where a disk is not
     *  mounted, that is all there is to be seen.
     *  @throws CatalogueError; Interrupted */
    Ending finish(const std::vector<Root>& roots, Pruning pruning);

private:
    class Storage;
    std::string path_;
    std::unique_ptr<Storage> storage_;
};

}  // namespace catalogue
