// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/ReportEntry.h"
#include "output/TrackReport.h"

namespace output {

/** What `analyze` reports of a track. */
class TrackEntry : public ReportEntry {
public:
    TrackEntry(TrackReport report, bool withWaves)
        : report_(std::move(report)), withWaves_(withWaves) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    TrackReport report_;
    bool withWaves_;
};

}  // namespace output
