// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/AnalysisArguments.h"
#include "cli/EffortArguments.h"
#include "cli/OriginArguments.h"
#include "cli/TracksCommand.h"
#include "output/KeyName.h"

namespace app {

/** `beatatlas analyze FILE…`: what is in these tracks. */
class AnalyzeCommand : public TracksCommand {
public:
    std::string name() const override { return "analyze"; }
    std::string description() const override {
        return "Print tempo, beats, key and length of tracks";
    }

private:
    void declareOwn(CLI::App& arguments, CLI::Option* json) override;
    void settleOwn() override { analysis_.settle(); }
    std::string documentFormat() const override { return "beatatlas.analysis"; }
    std::unique_ptr<output::ReportEntry> examine(const std::string& path) override;

    AnalysisArguments analysis_;
    EffortArguments effort_;
    OriginArguments origin_;
    std::optional<output::KeyNotation> keyNotation_;
    bool withWaves_ = false;
};

}  // namespace app
