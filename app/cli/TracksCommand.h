// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/TrackArguments.h"
#include "report/ReportEntry.h"
#include "report/ReportWriter.h"

namespace CLI {
class Option;
}

namespace app {

/** A command that takes any number of tracks and tells of each what it found, as text or JSON. A track that fails
 *  keeps none of the others from being told. */
class TracksCommand : public Command {
public:
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

protected:
    /** Declares what the command takes beside the tracks. @param json  the option --json */
    virtual void declareOwn(CLI::App& arguments, CLI::Option* json) = 0;

    /** Before any track. @throws UsageError when two arguments do not go together */
    virtual void settleOwn() {}

    /** The name of the JSON document: "beatatlas.analysis". */
    virtual std::string documentFormat() const = 0;

    /** Examines one track by way of tracks().attempt(). @return null when it failed */
    virtual std::unique_ptr<ReportEntry> examine(const std::string& path) = 0;

    TrackArguments& tracks() { return tracks_; }

private:
    std::unique_ptr<ReportWriter> makeWriter(ResultStream& results) const;
    bool addTracks(ReportWriter& writer);

    TrackArguments tracks_;
    std::vector<std::string> paths_;
    bool asJson_ = false;
};

}  // namespace app
