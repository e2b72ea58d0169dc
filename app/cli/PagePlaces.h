// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ResultPlaces.h"

namespace CLI {
class App;
}

namespace app {

/** Where the pages of tracks go: one to a file or to standard output, several to a folder. */
class PagePlaces {
public:
    void declare(CLI::App& arguments);

    /** Before any track.
     *  @param tracks  their paths
     *  @throws UsageError when places and tracks do not match, OutputError when the folder cannot
     *          be made or the file not be written */
    void settle(const std::vector<std::string>& tracks);

    bool isStandardOutput() const { return isStandardOutput_; }

    /** Not for standard output. */
    const ResultPlaces& places() const { return places_; }

private:
    std::optional<std::string> file_;
    std::optional<std::string> folder_;
    bool overwrites_ = false;
    bool isStandardOutput_ = false;
    ResultPlaces places_;
};

}  // namespace app
