// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "beatatlas/track.hpp"

namespace CLI {
class App;
}

namespace app {

/** The arguments that choose the analysis. */
class AnalysisArguments {
public:
    void declare(CLI::App& arguments);

    /** Checks and combines the arguments, before any track. @throws UsageError when two arguments
     *  do not go together */
    void settle();

    const beatatlas::track::Options& options() const { return options_; }

private:
    beatatlas::track::Options options_;
    std::optional<std::string> bpmRange_;
    std::optional<int> beatsPerBar_;
    std::optional<int> sectionBeats_;
    std::optional<double> rangeSeconds_;
    bool skipsKey_ = false;
};

}  // namespace app
