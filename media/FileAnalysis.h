// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "media/Effort.h"
#include "media/StereoBlock.h"

namespace media {

/** The outcome of a file's analysis. */
struct AnalysedFile {
    base::TrackSource file;
    beatatlas::track::TrackResult result;
};

/** The same, with the result as the C interface has it. */
struct AnalysedTrack {
    base::TrackSource file;
    beatatlas::track::TrackHandle track;
};

/** From a file to everything that is known about its track.
 *
 *  The file is decoded once. The length that it states lets the analysis begin with the first
 *  decoded frames; if that length is missing or turns out wrong, the analysis begins when the
 *  decoding has ended and the length is known. The decoded track is kept for the passes that
 *  follow; one that does not fit in memory is decoded again for each of them. */
class FileAnalysis {
public:
    struct Options {
        /** What is to be found; `threads` and `progress` are ignored. */
        beatatlas::track::Options track;
        Effort effort;

        /** Analyses what is left of a track that was cut off, instead of refusing it. */
        bool acceptsCutOff = false;

        /** Called with the progress of all the work, 0 to 1 and never falling, and with the track's
         *  length in seconds, 0 while it is unknown. Called from any thread, never from two at
         *  once. May throw to stop the work. */
        std::function<void(double fraction, double seconds)> progress;

        /** Receives every decoded block once, in the decoding thread. */
        std::function<void(const StereoBlock&)> alongside;
        /** Memory that `alongside` takes. */
        double alongsideBytesPerFrame = 0.0;

        /** Receives remarks on how the work was done. */
        std::function<void(const std::string&)> note;
    };

    explicit FileAnalysis(Options options);

    /** @throws TrackError with the reason why the track cannot be analysed, Interrupted,
     *          std::bad_alloc; whatever a callback throws */
    AnalysedFile analyze(const std::string& path) const;
    AnalysedTrack analyzeToHandle(const std::string& path) const;

private:
    Options options_;
};

}  // namespace media
