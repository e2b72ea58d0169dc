// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "output/picture/PictureOptions.h"

namespace CLI {
class App;
}

namespace app {

/** Where the pictures of tracks go: one track's to a file, those of several to a folder. */
class PicturePlaces {
public:
    void declare(CLI::App& arguments);

    /** Before any track.
     *  @param tracks  their paths
     *  @throws UsageError when places and tracks do not go together, OutputError when the folder
     *          cannot be made */
    void settle(const std::vector<std::string>& tracks);

    output::PictureFormat format() const { return format_.value_or(output::PictureFormat::png); }

    /** The picture's path, by the number of its track, from 0. */
    const std::string& path(std::size_t track) const { return paths_[track]; }

    /** Looks, before the work on a track, whether its picture can be written.
     *  @throws OutputError if not: it would replace a track, or one that is there already */
    void requireFree(std::size_t track) const;

private:
    void settleFile();
    void settleFolder();
    bool isTrack(const std::string& path) const;

    std::optional<std::string> file_;
    std::optional<std::string> folder_;
    std::optional<output::PictureFormat> format_;
    bool overwrites_ = false;
    std::vector<std::string> tracks_;
    std::vector<std::string> paths_;
};

/** A name for each track's picture, all different, also where capitals count for nothing: the name
 *  of the track without its ending; where several tracks share that, with it; where they share that
 *  too, numbered. @param ending  with its dot */
std::vector<std::string> pictureNames(const std::vector<std::string>& tracks,
                                      const std::string& ending);

}  // namespace app
