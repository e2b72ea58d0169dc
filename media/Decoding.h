// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "media/FeedSink.h"
#include "media/PcmStore.h"
#include "media/StereoChain.h"
#include "media/TrackDecoder.h"

namespace media {

/** One decoding of a file into a store, at the session's rate: in a thread of its own, or in that
 *  of the reader, a packet whenever the reader has nothing left.
 *
 *  Whatever goes wrong is thrown to the readers, once they come to that place. When the object goes
 *  the decoding has stopped, wherever it was. */
class Decoding {
public:
    enum class Place { ownThread, readersThread };

    /** What else is to be done with the track. Both run where it is decoded. */
    struct Hooks {
        std::function<void(const StereoBlock&)> alongside;  ///< takes every stretch
        /** Once all is decoded, before readers see the end; may refuse it by throwing. */
        std::function<void(const TrackDecoder&, std::int64_t frames)> atEnd;
    };

    /** Opens the file. @throws TrackError when it holds no audio that can be decoded */
    Decoding(const std::string& path, std::int64_t limitBytes, Place place, Hooks hooks);
    ~Decoding();
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    /** Begins. What is to read from the first frame on had better be there already. */
    void start();

    PcmStore& store() { return store_; }
    const PcmStore& store() const { return store_; }

    /** Reads on, decoding meanwhile where that is the reader's part. As PcmReader::read(). */
    std::int64_t read(PcmReader& reader, float* left, float* right, std::int64_t frames);

    /** Waits for the first frames. @throws the reason when there are none */
    void awaitFirst();

    /** Goes on for a moment. @return false when the end has not come. @throws the reason when the
     *  decoding failed */
    bool awaitEnd();

    /** @name Known after awaitFirst()
     *  @{ */
    int sessionRate() const { return sessionRate_; }

    /** Length at the session's rate by the file's own account, see
     *  TrackDecoder::declaredFrames(). */
    std::optional<std::int64_t> declaredFrames() const { return declaredFrames_; }
    /** @} */

    /** How much of the file has been read, 0 to 1. */
    double shareRead() const { return shareRead_; }

private:
    void runInOwnThread();
    void step();
    void guardedStep();
    void take(const StereoBlock& block);
    void noteLength();

    Hooks hooks_;
    PcmStore store_;
    TrackDecoder decoder_;
    FeedSink sink_;
    StereoChain chain_;
    bool isDecoded_ = false;  ///< nothing is left for step(); only where it is decoded
    std::atomic<bool> isStopped_{false};
    std::atomic<double> shareRead_{0.0};
    int sessionRate_ = 0;  ///< these two are written before the first frames are
    std::optional<std::int64_t> declaredFrames_;
    Place place_;
    std::thread thread_;
};

}  // namespace media
