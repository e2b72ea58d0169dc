// SPDX-License-Identifier: MIT
#pragma once

#include "base/AnalysisOptions.h"
#include "base/AnalysisResult.h"
#include "base/TrackSource.h"

namespace output {

/** Everything that is known about one track in the end. */
struct TrackReport : base::TrackSource {
    base::AnalysisOptions options;  ///< what was asked for
    base::AnalysisResult analysis;
};

}  // namespace output
