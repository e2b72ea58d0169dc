// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "analysis/AnalysisOptions.h"
#include "analysis/AnalysisResult.h"
#include "audio/TrackDecoder.h"
#include "io/ProgressLine.h"

namespace app {

/** Everything that is known about one file in the end. */
struct TrackReport {
    std::string path;
    TrackFormat format;
    AnalysisOptions options;  ///< what was asked for
    bool isCutOff = false;    ///< the file holds only the beginning of the track
    std::int64_t damagedPackets =
        0;           ///< stretches that could not be decoded; silence stands in their place
    FileState file;  ///< in which every pass has to find it
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

    /** @throws TrackError with the reason why the track cannot be analysed */
    TrackReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    using Feed = std::function<void(StereoBlock&)>;
    using ShowFraction = std::function<void(double)>;

    int measure(TrackReport& report, const ShowFraction& show) const;
    void refuseUnlessUsable(const TrackReport& report, const DecodeTally& tally,
                            std::int64_t frames) const;
    static void feedTrack(const TrackReport& report, int frames, const Feed& feed,
                          const ShowFraction& show);

    AnalysisOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
