// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/AnalysisOptions.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments that say which analysis a command wants. */
class AnalysisArguments {
public:
    void declare(CLI::App& arguments);

    /** Settles what was asked for, before any track. @throws UsageError when two arguments do not go together */
    void settle();

    const base::AnalysisOptions& options() const { return options_; }

private:
    base::AnalysisOptions options_;
    std::optional<int> sectionBeats_;
    std::optional<double> rangeSeconds_;
    bool skipsKey_ = false;
};

}  // namespace app
