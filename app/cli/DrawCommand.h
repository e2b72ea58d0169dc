// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/TrackArguments.h"
#include "output/KeyName.h"
#include "output/picture/PictureOptions.h"

namespace app {

/** `beatatlas draw FILE -o OUT`: a picture of a track. */
class DrawCommand : public Command {
public:
    std::string name() const override { return "draw"; }
    std::string description() const override {
        return "Draw a track's waveforms and beat grid as a picture";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    /** @throws TrackError when the zoomed stretch would begin where the track has ended */
    void refuseBeyondEnd(double trackSeconds) const;

    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    output::PictureOptions picture_;
    std::optional<output::KeyNotation> keyNotation_;
    std::string path_;
    std::string outputPath_;
};

}  // namespace app
