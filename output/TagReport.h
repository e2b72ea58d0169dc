// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/TagChange.h"
#include "output/TrackReport.h"

namespace output {

/** What was found in a track, and what became of its file's tags. */
struct TagReport : TrackReport {
    std::vector<base::TagChange> changes;
    bool isWritten = false;

    /** Whether a field is to be another than it was. */
    bool hasWork() const {
        using Kind = base::TagChange::Kind;
        for (const base::TagChange& change : changes) {
            if (change.kind != Kind::kept && change.kind != Kind::unchanged) return true;
        }
        return false;
    }
};

}  // namespace output
