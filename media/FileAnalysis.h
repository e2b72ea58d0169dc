// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "media/Effort.h"
#include "media/StereoBlock.h"

namespace media {

/** What a file's analysis gives. */
struct AnalysedFile {
    base::TrackSource file;
    beatatlas::track::TrackResult result;
};

/** From a file to everything that is known about its track.
 *
 *  The file is decoded once. Its own account of its length lets the analysis begin with the first
 *  decoded frames; where that account proves wrong, or is missing, the analysis begins when the
 *  decoding has ended and the length is known. The decoded track is kept for the passes that
 *  follow; one that would not fit is decoded anew for each of them instead. */
class FileAnalysis {
public:
    struct Options {
        /** What is to be found; threads and progress are not read. */
        beatatlas::track::Options track;
        Effort effort;

        /** Takes what is left of a track that was cut off, instead of refusing it. */
        bool acceptsCutOff = false;

        /** Is told how far all of the work is, 0 to 1, never falling, and how long the track is, in
         *  seconds, 0 while that is unknown. From any thread, never from two at once. May throw to
         *  stop the work. */
        std::function<void(double fraction, double seconds)> progress;

        /** Takes every decoded stretch once, from the thread that decodes. */
        std::function<void(const StereoBlock&)> alongside;
        double alongsideBytesPerFrame = 0.0;  ///< what that keeps in memory

        /** Takes remarks for people who want to know how it was done. */
        std::function<void(const std::string&)> note;
    };

    explicit FileAnalysis(Options options);

    /** @throws TrackError with the reason why the track cannot be analysed, Interrupted,
     *          std::bad_alloc; whatever a callback throws */
    AnalysedFile analyze(const std::string& path) const;

private:
    Options options_;
};

}  // namespace media
