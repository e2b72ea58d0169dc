// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "analysis/PitchAnalyzer.h"
#include "report/ReportEntry.h"

namespace app {

/** What `pitch` tells of a track. */
class PitchEntry : public ReportEntry {
public:
    explicit PitchEntry(PitchReport report) : report_(std::move(report)) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    PitchReport report_;
};

}  // namespace app
