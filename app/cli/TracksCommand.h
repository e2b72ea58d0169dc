// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/Command.h"
#include "cli/TrackArguments.h"
#include "output/ReportEntry.h"
#include "output/ReportWriter.h"

namespace CLI {
class Option;
}

namespace app {

/** A command that takes any number of tracks and reports what it found in each, as text or JSON. A
 *  track that fails does not prevent the others. */
class TracksCommand : public Command {
public:
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

protected:
    /** Declares the command's own arguments. @param json  the option --json */
    virtual void declareOwn(CLI::App& arguments, CLI::Option* json) = 0;

    /** Before any track. @throws UsageError when two arguments do not go together */
    virtual void settleOwn() {}

    /** The name of the JSON document: "beatatlas.analysis". */
    virtual std::string documentFormat() const = 0;

    /** Examines one track, by way of examineBy(). @return null when it failed */
    virtual std::unique_ptr<output::ReportEntry> examine(const std::string& path) = 0;

    const TrackArguments& tracks() const { return tracks_; }

    /** Whether results are reported as JSON. */
    bool isJson() const { return asJson_; }

    /** The work of examine(). @param analyze  takes a ProgressLine and returns what an Entry
     *  reports */
    template <class Entry, class Analyze, class... Details>
    std::unique_ptr<output::ReportEntry> examineBy(const Analyze& analyze, const std::string& path,
                                                   Details... details) {
        auto report = tracks_.attempt(path, analyze);
        if (!report) return nullptr;
        return std::make_unique<Entry>(std::move(*report), details...);
    }

private:
    std::unique_ptr<output::ReportWriter> makeWriter(ResultStream& results) const;
    bool addTracks(output::ReportWriter& writer);

    TrackArguments tracks_;
    std::vector<std::string> paths_;
    bool asJson_ = false;
};

}  // namespace app
