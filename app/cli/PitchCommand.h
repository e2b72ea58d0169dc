// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "analysis/PitchAnalyzer.h"
#include "cli/TracksCommand.h"

namespace app {

/** `beatatlas pitch FILE…`: what A4 is tuned to in these tracks. */
class PitchCommand : public TracksCommand {
public:
    std::string name() const override { return "pitch"; }
    std::string description() const override { return "Print the concert pitch of tracks"; }

private:
    void declareOwn(CLI::App& arguments, CLI::Option* json) override;
    std::string documentFormat() const override { return "beatatlas.pitch"; }
    std::unique_ptr<output::ReportEntry> examine(const std::string& path) override;

    output::PitchOptions options_;
};

}  // namespace app
