// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "beatatlas/track.hpp"
#include "media/Decoding.h"
#include "media/Effort.h"
#include "media/OverloadMeter.h"
#include "media/TrackFile.h"

namespace media {

/** Provides a file's track for any number of passes, with a single decoding if memory allows.
 *
 *  A pass may start with the first decoded frame. Once more has been decoded than may be kept, only
 *  what the present pass still needs is kept, and every further pass decodes the file again. A
 *  track that is read only once is not kept at all. */
class FilePasses {
public:
    struct Options {
        Effort effort;
        /** Decides how much memory the analysis takes. */
        beatatlas::track::TempoMode tempo = beatatlas::track::TempoMode::automatic;
        bool acceptsCutOff = false;
        /** One pass is enough, if the declared length is true. */
        bool isReadOnce = false;

        /** Receives every block of the first decoding. */
        std::function<void(const StereoBlock&)> alongside;
        /** Memory that `alongside` takes. */
        double alongsideBytesPerFrame = 0.0;
    };

    /** Starts decoding. @throws TrackError when nothing can be decoded, Interrupted */
    FilePasses(std::string path, Options options);

    int rate() const { return first_.sessionRate(); }

    /** Length at the session's rate as the file states it, which may be wrong. */
    std::optional<std::int64_t> declaredFrames() const { return first_.declaredFrames(); }

    /** Prepares for passes over a track of that length, known or assumed. */
    void expect(std::int64_t frames);

    /** Begins a pass, from any thread. The pass throws the error that ends it. @throws TrackError
     *  when the file has to be decoded again and has changed */
    beatatlas::track::Pass open();

    /** Whether passes have to wait for a decoder. */
    bool areCostly() const;

    /** How many threads may work on the passes. */
    int threads() const { return threads_; }

    /** Continues the first decoding for a moment. @return false before its end. @throws TrackError
     *  when the track cannot be used */
    bool awaitEnd();
    double shareRead() const { return first_.shareRead(); }

    /** What the first decoding found. Valid once it has ended. */
    const TrackFile& file() const { return file_; }
    std::int64_t frames() const { return first_.store().frames(); }

private:
    struct AnotherDecoding;

    Decoding::Hooks hooks();
    std::int64_t keptBytes() const;
    beatatlas::track::Pass decodeAnew() const;

    std::string path_;
    Options options_;
    TrackFile file_;
    OverloadMeter meter_;  // of the first decoding
    Decoding first_;
    std::mutex mutex_;                        // guards the next member
    std::shared_ptr<PcmReader> firstReader_;  // keeps the beginning for the first pass
    int threads_;
};

}  // namespace media
