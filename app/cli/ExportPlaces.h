// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ResultPlaces.h"
#include "output/formats/ExportFormat.h"

namespace CLI {
class App;
}

namespace app {

/** Where exported documents go: one for all tracks, or one for each of them. */
class ExportPlaces {
public:
    void declare(CLI::App& arguments);

    /** First of all: settles what the arguments mean for documents of this format. */
    void choose(const output::ExportFormat& format);

    /** Before any track.
     *  @param tracks  their names; may be left out where one document holds all of them: then none
     *                 is kept from being replaced
     *  @throws UsageError when places, format and tracks do not go together, OutputError when a
     *          folder cannot be made or a file not be written */
    void settle(const std::vector<std::string>& tracks);

    /** Whether every track has a document of its own. */
    bool isForEach() const { return isForEach_; }
    bool isStandardOutput() const { return isStandardOutput_; }

    /** Where each track's document goes; one document for all of them goes to the first place. */
    const ResultPlaces& places() const { return places_; }

private:
    std::optional<std::string> file_;
    std::optional<std::string> folder_;
    bool overwrites_ = false;
    const output::ExportFormat* format_ = nullptr;
    std::string place_;
    bool isInFolder_ = false;
    bool isByPattern_ = false;
    bool isForEach_ = false;
    bool isStandardOutput_ = false;
    ResultPlaces places_;
};

}  // namespace app
