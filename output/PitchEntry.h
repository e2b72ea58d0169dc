// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/PitchReport.h"
#include "output/ReportEntry.h"

namespace output {

/** What `pitch` reports of a track. */
class PitchEntry : public ReportEntry {
public:
    explicit PitchEntry(PitchReport report) : report_(std::move(report)) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    PitchReport report_;
};

}  // namespace output
