// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "output/ReportEntry.h"
#include "output/TrackReport.h"

namespace output {

/** What is told of a stored track beside the track. */
struct StoredNote {
    /** What was found, before any correction. */
    std::optional<double> foundBpm;
    std::optional<int> foundKey;
    /** Seconds since 1970. */
    std::int64_t madeAt = 0;
    std::string toolVersion;
    /** JSON. */
    std::string parameters;
    bool isGone = false;
};

/** What `show` tells of a track: what `analyze` does, with corrections. */
class StoredEntry : public ReportEntry {
public:
    /** @param report  with the corrections laid over it */
    StoredEntry(TrackReport report, StoredNote note, bool withWaves)
        : report_(std::move(report)), note_(std::move(note)), withWaves_(withWaves) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    std::string handText() const;

    TrackReport report_;
    StoredNote note_;
    bool withWaves_;
};

}  // namespace output
