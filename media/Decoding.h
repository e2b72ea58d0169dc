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

/** One decoding of a file into a store, at the session's rate: in a thread of its own, or in the
 *  reader's thread, packet by packet whenever the reader has nothing left to read.
 *
 *  Any error is thrown to the readers when they reach that position. The destructor stops the
 *  decoding. */
class Decoding {
public:
    enum class Place { ownThread, readersThread };

    /** What else is to be done with the track. Both hooks run in the decoding thread. */
    struct Hooks {
        /** Receives every block. */
        std::function<void(const StereoBlock&)> alongside;
        /** Called when all is decoded, before readers see the end; may throw to refuse the
         *  track. */
        std::function<void(const TrackDecoder&, std::int64_t frames)> atEnd;
    };

    /** Opens the file. @throws TrackError when it holds no audio that can be decoded */
    Decoding(const std::string& path, std::int64_t limitBytes, Place place, Hooks hooks);
    ~Decoding();
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    /** Starts decoding. Readers that need the first frame should exist before. */
    void start();

    PcmStore& store() { return store_; }
    const PcmStore& store() const { return store_; }

    /** Reads as PcmReader::read() does, and decodes if that is the reader's task. */
    std::int64_t read(PcmReader& reader, float* left, float* right, std::int64_t frames);

    /** Waits for the first frames. @throws the decoder's error when there are none */
    void awaitFirst();

    /** Continues for a moment. @return false before the end. @throws the error when the decoding
     *  failed */
    bool awaitEnd();

    /** @name Known after awaitFirst()
     *  @{ */
    int sessionRate() const { return sessionRate_; }

    /** Length at the session's rate as the file states it, see TrackDecoder::declaredFrames(). */
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
    bool isDecoded_ = false;  // nothing is left for step(); used by the decoding thread alone
    std::atomic<bool> isStopped_{false};
    std::atomic<double> shareRead_{0.0};
    int sessionRate_ = 0;  // these two are set before the first frames arrive
    std::optional<std::int64_t> declaredFrames_;
    Place place_;
    std::thread thread_;
};

}  // namespace media
