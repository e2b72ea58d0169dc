// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/PagePlaces.h"
#include "cli/TrackArguments.h"
#include "output/KeyName.h"
#include "output/TrackReport.h"
#include "output/page/TrackPage.h"

namespace app {

/** `beatatlas report FILE... -o OUT | -d DIR`: pages of tracks for browsers, to see and hear what
 *  was found. A track that fails does not prevent the others. */
class ReportCommand : public Command {
public:
    std::string name() const override { return "report"; }
    std::string description() const override {
        return "Make a page of a track, to see and hear in a browser what was found";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    bool reportTrack(std::size_t track, ResultStream& results);
    output::PageSound soundFor(const output::TrackReport& report, std::size_t track,
                               ProgressLine& progress) const;
    std::string pagePath(std::size_t track) const;
    /** @return as OutputFile::commit() */
    std::string write(const output::TrackReport& report, const output::PageSound& sound,
                      std::size_t track, ResultStream& results) const;

    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    PagePlaces places_;
    std::optional<output::KeyNotation> keyNotation_;
    std::string embedding_;
    bool embedsNothing_ = false;
    std::int64_t mostEmbeddedBytes_ = 0;
    std::vector<std::string> paths_;
};

}  // namespace app
