// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace app {

/** Where what is made of each track goes. No result ever replaces a track. */
class ResultPlaces {
public:
    /** One result, whatever the number of tracks, even none; a file that is there is replaced.
     *  @param result  what it is called in messages: "picture"
     *  @throws OutputError when it cannot be written, UsageError when it would replace a track */
    void settleFile(const std::vector<std::string>& tracks, const std::string& path,
                    const std::string& result);

    /** A result for each track, by the name of the track. The folder is made if need be.
     *  @param ending  of the results, with its dot
     *  @throws OutputError when the folder cannot be made */
    void settleFolder(const std::vector<std::string>& tracks, const std::string& folder,
                      const std::string& ending, bool overwrites);

    /** A result for each track, by a pattern in which {name} stands for the name of the track.
     *  Folders are made if need be. */
    void settlePattern(const std::vector<std::string>& tracks, const std::string& pattern,
                       bool overwrites);

    /** The result's path, by the number of its track, from 0. */
    const std::string& path(std::size_t track) const { return paths_[track]; }

    /** Of all results; none where they go to no file. */
    const std::vector<std::string>& paths() const { return paths_; }

    /** Looks, before the work on a track, whether its result can be written.
     *  @throws TrackError if not, so that the other tracks keep theirs: it would replace a track,
     *          or a file that is there already */
    void requireFree(std::size_t track) const;

private:
    /** By which the system knows a file, whatever its names. */
    using Identity = std::pair<dev_t, ino_t>;

    static std::optional<Identity> identityOf(const std::string& path);
    void keepFromReplacing(const std::vector<std::string>& tracks);
    bool isTrack(const std::string& path) const;

    std::set<Identity> tracks_;
    std::vector<std::string> paths_;
    bool overwrites_ = false;
};

/** The placeholder in a pattern. */
inline constexpr const char* kNameInPattern = "{name}";

/** A name for each track's result, all different, also where capitals count for nothing: the name
 *  of the track without its ending; where several tracks share that, with it; where they share that
 *  too, numbered. @param ending  with its dot */
std::vector<std::string> resultNames(const std::vector<std::string>& tracks,
                                     const std::string& ending);

}  // namespace app
