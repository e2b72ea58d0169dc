// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/TrackSource.h"
#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/TrackArguments.h"
#include "click/ClickTrack.h"
#include "media/audioKinds.h"

namespace app {

/** `beatatlas click FILE -o OUT`: a track with clicks on its beats, to hear whether they are
 *  right. */
class ClickCommand : public Command {
public:
    std::string name() const override { return "click"; }
    std::string description() const override {
        return "Write a track with clicks on its beats as an audio file";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    base::TrackSource clickTrack(const std::string& path, const std::string& outputPath,
                                 const media::AudioKind& kind, ProgressLine& progress);

    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    ClickTrack::Options options_;
    bool isAlone_ = false;
    bool isApart_ = false;
    std::string path_;
    std::string outputPath_;
    std::string outputWarning_;
    bool hasBeats_ = false;
};

}  // namespace app
