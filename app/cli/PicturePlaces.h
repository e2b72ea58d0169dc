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

/** The paths of the pictures: a file for one track, a folder for several. */
class PicturePlaces {
public:
    void declare(CLI::App& arguments);

    /** Before any track.
     *  @param tracks  their paths
     *  @throws UsageError when paths and tracks do not match, OutputError when the folder cannot be
     *          created */
    void settle(const std::vector<std::string>& tracks);

    output::PictureFormat format() const { return format_.value_or(output::PictureFormat::png); }

    /** The picture's path, by the number of its track, from 0. */
    const std::string& path(std::size_t track) const { return paths_[track]; }

    /** Checks, before the work on a track, whether its picture can be written.
     *  @throws OutputError if not: it would replace a track or an existing picture */
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

/** A name for each track's picture, all different even if case is ignored: the name of the track
 *  without its extension; if several tracks share that, with it; if they share that too, numbered.
 *  @param ending  with its dot */
std::vector<std::string> pictureNames(const std::vector<std::string>& tracks,
                                      const std::string& ending);

}  // namespace app
