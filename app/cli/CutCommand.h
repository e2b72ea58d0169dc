// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "analysis/BeatCutter.h"
#include "cli/Command.h"
#include "cli/TrackArguments.h"
#include "media/Recording.h"
#include "media/TrackFile.h"

namespace app {

/** `beatatlas cut FILE -o OUT.wav`: a track without its percussive beats. */
class CutCommand : public Command {
public:
    std::string name() const override { return "cut"; }
    std::string description() const override {
        return "Write a track without its percussive beats as a WAV file";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    media::TrackFile cutTrack(const std::string& path, const std::string& outputPath,
                              ProgressLine& progress);

    TrackArguments tracks_;
    CutOptions options_;
    bool asFloat_ = false;
    std::string path_;
    std::string outputPath_;
    std::string outputWarning_;
};

}  // namespace app
