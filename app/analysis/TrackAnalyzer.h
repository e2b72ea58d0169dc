// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "analysis/AnalysisOptions.h"
#include "analysis/AnalysisResult.h"
#include "analysis/TrackFile.h"
#include "audio/StereoBlock.h"
#include "io/ProgressLine.h"

namespace app {

/** Everything that is known about one file in the end. */
struct TrackReport : TrackFile {
    AnalysisOptions options;  ///< what was asked for
    AnalysisResult analysis;
};

/** Takes one file through decoding and analysis.
 *
 *  The library wants the length before the first frame, and for the key the whole track twice. The file is decoded
 *  anew for each of these passes: decoding is a small part of the work, while ten hours of decoded audio would take
 *  14 GB of memory or disk. */
class TrackAnalyzer {
public:
    /** @param acceptsCutOff  analyse what is left of a track that was cut off, instead of refusing it */
    TrackAnalyzer(const AnalysisOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    using Feed = std::function<void(StereoBlock&)>;

    /** @param alongside  takes the whole track too, while it is measured
     *  @throws TrackError with the reason why the track cannot be analysed */
    TrackReport analyze(
        const std::string& path, ProgressLine& progress,
        const Feed& alongside = [](StereoBlock&) {}) const;

private:
    using ShowFraction = std::function<void(double)>;

    int measure(TrackFile& file, const Feed& alongside, const ShowFraction& show) const;
    static void feedTrack(const TrackReport& report, int frames, const Feed& feed,
                          const ShowFraction& show);

    AnalysisOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
