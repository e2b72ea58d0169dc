// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ResultPlaces.h"
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

    const ResultPlaces& places() const { return places_; }

private:
    std::optional<std::string> file_;
    std::optional<std::string> folder_;
    std::optional<output::PictureFormat> format_;
    bool overwrites_ = false;
    ResultPlaces places_;
};

}  // namespace app
