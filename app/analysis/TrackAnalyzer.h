// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/AnalysisOptions.h"
#include "io/ProgressLine.h"
#include "media/StereoBlock.h"
#include "media/TrackFile.h"
#include "output/TrackReport.h"

namespace app {

/** Takes one file through decoding and analysis.
 *
 *  The library wants the length before the first frame, and for the key the whole track twice. The file is decoded
 *  anew for each of these passes: decoding is a small part of the work, while ten hours of decoded audio would take
 *  14 GB of memory or disk. */
class TrackAnalyzer {
public:
    /** @param acceptsCutOff  analyse what is left of a track that was cut off, instead of refusing it */
    TrackAnalyzer(const base::AnalysisOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    using Feed = std::function<void(media::StereoBlock&)>;

    /** @param alongside  takes the whole track too, while it is measured
     *  @throws TrackError with the reason why the track cannot be analysed */
    output::TrackReport analyze(
        const std::string& path, ProgressLine& progress,
        const Feed& alongside = [](media::StereoBlock&) {}) const;

private:
    using ShowFraction = std::function<void(double)>;

    media::TrackFile measure(const std::string& path, const Feed& alongside,
                             const ShowFraction& show, int& frames) const;
    static void feedTrack(const media::TrackFile& file, int frames, const Feed& feed,
                          const ShowFraction& show);

    base::AnalysisOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
