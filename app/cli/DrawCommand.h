// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/PicturePlaces.h"
#include "cli/TrackArguments.h"
#include "output/KeyName.h"
#include "output/TrackReport.h"
#include "output/picture/PictureOptions.h"

namespace app {

/** `beatatlas draw FILE... -o OUT | -d DIR`: pictures of tracks. A track that fails does not
 *  prevent the others. */
class DrawCommand : public Command {
public:
    std::string name() const override { return "draw"; }
    std::string description() const override {
        return "Draw waveforms and beat grids of tracks as pictures";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    bool drawTrack(std::size_t track, const std::string& path);
    /** @throws TrackError when the zoomed section would begin after the end of the track */
    void refuseBeyondEnd(double trackSeconds) const;
    /** @return as OutputFile::commit() */
    std::string write(const output::TrackReport& report, const std::string& path) const;

    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    PicturePlaces places_;
    output::PictureOptions picture_;
    std::optional<output::KeyNotation> keyNotation_;
    std::vector<std::string> paths_;
};

}  // namespace app
