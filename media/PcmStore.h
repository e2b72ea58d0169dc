// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

#include "media/PcmChunk.h"
#include "media/PcmMemory.h"

namespace media {

class PcmReader;

/** A decoded track in memory, growing while one thread writes it and others read it, each at its
 *  own position.
 *
 *  Up to its limit it keeps everything, so that the track can be read any number of times. At the
 *  limit it becomes a window: what every reader has passed is dropped, and a writer that waits for
 *  readers waits until there is room again. Without a reader everything is dropped and only the
 *  frames are counted.
 *
 *  All waiting ends when a signal asks the program to stop: base::Interrupted is thrown then. */
class PcmStore {
public:
    enum class WhenFull {
        /** The writer waits for the readers, which are in other threads. */
        wait,
        /** The writer is driven by the reader, and nobody can wait. */
        grow,
    };

    PcmStore(std::int64_t limitBytes, WhenFull whenFull)
        : limitBytes_(limitBytes), whenFull_(whenFull) {}
    PcmStore(const PcmStore&) = delete;
    PcmStore& operator=(const PcmStore&) = delete;

    /** @name For the writer
     *  @{ */

    /** Adds the next block. @return false when no more is wanted: see abandon() */
    bool append(const StereoBlock& block);

    /** Nothing follows. */
    void finish();

    /** Nothing follows because of this error, which readers throw when they reach this position. */
    void fail(std::exception_ptr reason);
    /** @} */

    /** Releases a waiting writer and refuses whatever it appends from now on. */
    void abandon();

    void setLimit(std::int64_t bytes);
    void setWhenFull(WhenFull whenFull);

    /** Frames written so far. */
    std::int64_t frames() const;
    /** Whether as much is kept as the limit allows, or more. */
    bool isFull() const;
    /** Whether nothing has been dropped so far. */
    bool isWhole() const;
    /** Whether nothing follows, for whatever reason. */
    bool hasEnded() const;

    /** Waits for the first frames or the end. @throws the error when the store failed without a
     *  frame */
    void awaitFirst();

    /** Waits for the end, at most that long. @return false when it has not come. @throws the error
     *  when the store failed */
    bool awaitEnd(int milliseconds);

    /** Whether the first chunk needs floats. Valid once there are frames and while none has been
     *  dropped. */
    bool beginsWithFloats() const;

private:
    friend class PcmReader;
    using Lock = std::unique_lock<std::mutex>;

    template <class Condition>
    void waitFor(Lock& lock, const Condition& condition);
    void end(std::exception_ptr reason);
    void add(PcmReader& reader);
    void remove(PcmReader& reader);
    bool holds(std::int64_t chunk) const;
    bool mustWait() const;
    void dropWhatIsRead();

    PcmMemory memory_;          // used by the writer alone
    mutable std::mutex mutex_;  // guards everything below, and the readers' positions
    std::condition_variable changed_;
    std::int64_t limitBytes_;
    WhenFull whenFull_;
    std::deque<std::shared_ptr<const PcmChunk>> chunks_;
    std::vector<PcmReader*> readers_;
    std::int64_t droppedChunks_ = 0;
    std::int64_t bytes_ = 0;
    std::int64_t frames_ = 0;
    bool hasEnded_ = false;
    bool isAbandoned_ = false;
    std::exception_ptr failure_;
};

/** Reads a store from its first frame on. Must not outlive the store. */
class PcmReader {
public:
    /** The store must still be whole: see PcmStore::isWhole(). */
    explicit PcmReader(PcmStore& store) : store_(store) { store_.add(*this); }
    ~PcmReader() { store_.remove(*this); }
    PcmReader(const PcmReader&) = delete;
    PcmReader& operator=(const PcmReader&) = delete;

    /** Whether read() would not have to wait. */
    bool isReady() const;

    /** Waits for the next frames. @return how many were copied, at most `frames`; 0 at the end
     *  @throws the error when the store failed at this position */
    std::int64_t read(float* left, float* right, std::int64_t frames);

private:
    friend class PcmStore;

    void takeNextChunk();

    PcmStore& store_;
    std::int64_t nextChunk_ = 0;  // guarded by the store's mutex
    std::shared_ptr<const PcmChunk> chunk_;
    std::size_t at_ = 0;  // the next frame of the chunk
};

}  // namespace media
