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

/** Hands out the track of a file as often as it is wanted, and decodes it once for that if memory
 *  allows.
 *
 *  The passes go along with the decoding from its first frame. Once more has been decoded than may
 *  be kept, only what the present pass still needs is, and every further pass decodes the file
 *  anew. What is read but once is not kept at all. */
class FilePasses {
public:
    struct Options {
        Effort effort;
        /** The analysis takes memory accordingly. */
        beatatlas::track::TempoMode tempo = beatatlas::track::TempoMode::automatic;
        bool acceptsCutOff = false;
        bool isReadOnce = false;  ///< one pass will do, if the declared length is true

        /** Takes every stretch of the first decoding. */
        std::function<void(const StereoBlock&)> alongside;
        double alongsideBytesPerFrame = 0.0;  ///< what that keeps in memory
    };

    /** Begins to decode. @throws TrackError when there is nothing that can be decoded,
     *  Interrupted */
    FilePasses(std::string path, Options options);

    int rate() const { return first_.sessionRate(); }

    /** Length by the file's own account, which may be wrong, at the session's rate. */
    std::optional<std::int64_t> declaredFrames() const { return first_.declaredFrames(); }

    /** Gets ready for passes over a track of that length, which is known or believed. */
    void expect(std::int64_t frames);

    /** Begins a pass; it throws what keeps it from going on. From any thread. @throws TrackError
     *  when the file has to be decoded anew and is not the one it was */
    beatatlas::track::Pass open();

    /** Whether passes have to wait for a decoder. */
    bool areCostly() const;

    /** How many threads may work on what the passes give. */
    int threads() const { return threads_; }

    /** Goes on with the first decoding for a moment. @return false when it has not ended. @throws
     *  why the track cannot be used */
    bool awaitEnd();
    double shareRead() const { return first_.shareRead(); }

    /** What the first decoding met. Once it has ended. */
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
    OverloadMeter meter_;  ///< of the first decoding
    Decoding first_;
    std::mutex mutex_;                        ///< of the next
    std::shared_ptr<PcmReader> firstReader_;  ///< keeps the beginning for the first pass
    int threads_;
};

}  // namespace media
