// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/TrackArguments.h"
#include "comparison/comparisonReport.h"

namespace app {

/** `beatatlas compare A B`: how far two accounts of one track agree, be they results, audio files
 *  or beats that somebody else found. */
class CompareCommand : public Command {
public:
    std::string name() const override { return "compare"; }
    std::string description() const override {
        return "Show how far two results, tracks or lists of beats agree";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    bool addSide(const std::string& path);
    bool addText(const std::string& path, const std::string& text);
    bool addTrack(const std::string& path);

    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    std::string a_;
    std::string b_;
    std::vector<comparison::Side> sides_;
    bool asJson_ = false;
};

}  // namespace app
