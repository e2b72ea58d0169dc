// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/TagChange.h"

namespace media {

/** Changes the tags of a file, and nothing else of it.
 *
 *  A copy beside the file gets the new tags, is read back, its encoded music compared with that of
 *  the file packet by packet, and takes the file's place in one step. Until then the file is as it
 *  was, whatever happens. Owner, permissions and extended attributes are kept as far as the system
 *  allows. */
class TagRewrite {
public:
    struct Options {
        bool keepsTime = false;    ///< the file's time of modification stays
        bool keepsBackup = false;  ///< the old file stays beside the new one
    };

    explicit TagRewrite(Options options) : options_(options) {}

    /** @param path  links are followed
     *  @return what could not be kept although the file is in its place, as reasons for people
     *  @throws TrackError with the reason why the file was left as it is; OutputError,
     *          Interrupted */
    std::vector<std::string> write(const std::string& path,
                                   const std::vector<base::TagChange>& changes) const;

    /** Looks, before the work on a track, whether write() can do its part.
     *  @throws TrackError, OutputError with the reason if not */
    void requirePossible(const std::string& path) const;

    /** Where write() leaves the old file. */
    static std::string backupOf(const std::string& path);

private:
    Options options_;
};

}  // namespace media
