// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "beatatlas/track.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace app {

/** The arguments that choose the analysis. */
class AnalysisArguments {
public:
    void declare(CLI::App& arguments);

    /** Checks and combines the arguments, before any track. Settings of a file that do not go with
     *  the tempo that was asked for are of no effect.
     *  @throws UsageError when two arguments do not go together */
    void settle();

    const beatatlas::track::Options& options() const { return options_; }

private:
    void declareForOneMode(CLI::App& arguments);
    void refuseUnless(beatatlas::track::TempoMode mode, const CLI::Option& option,
                      const char* refusal) const;

    beatatlas::track::Options options_;
    CLI::Option* bpmRangeOption_ = nullptr;
    CLI::Option* beatsPerBarOption_ = nullptr;
    CLI::Option* sectionOption_ = nullptr;
    CLI::Option* rangeOption_ = nullptr;
    std::optional<std::string> bpmRange_;
    std::optional<int> beatsPerBar_;
    std::optional<int> sectionBeats_;
    std::optional<double> rangeSeconds_;
    bool skipsKey_ = false;
};

}  // namespace app
