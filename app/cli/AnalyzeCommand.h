// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "report/ReportWriter.h"

namespace app {

/** `beatatlas analyze FILE…`: what is in these tracks, as text or JSON. */
class AnalyzeCommand : public Command {
public:
    std::string name() const override { return "analyze"; }
    std::string description() const override {
        return "Tell tempo, beats, key and length of tracks";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    std::unique_ptr<ReportWriter> makeWriter(ResultStream& results) const;
    bool addTracks(ReportWriter& writer);

    AnalysisArguments analysis_;
    std::vector<std::string> paths_;
    bool asJson_ = false;
    bool withWaves_ = false;
};

}  // namespace app
