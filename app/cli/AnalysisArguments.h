// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "analysis/TrackAnalyzer.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments of every command that analyses tracks, and the analysis they ask for. */
class AnalysisArguments {
public:
    void declare(CLI::App& arguments);

    /** Settles what was asked for, before any track. @throws UsageError when two arguments do not go together */
    void settle();

    /** Analyses one track, with progress and warnings on standard error. After settle().
     *  @return nothing when it could not be analysed; the reason, which went to standard error too, is in failure() */
    std::optional<TrackReport> analyze(const std::string& path);

    const std::string& failure() const { return failure_; }

private:
    std::optional<TrackReport> fail(const std::string& path, const std::string& reason);

    AnalysisOptions options_;
    std::optional<int> sectionBeats_;
    std::optional<double> rangeSeconds_;
    bool skipsKey_ = false;
    bool acceptsCutOff_ = false;
    bool isQuiet_ = false;
    bool isVerbose_ = false;
    std::string failure_;
};

}  // namespace app
