// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace beatatlas {

/** Cuts the fed signal into chunks of 128 frames, the grain of the level envelopes. The first value
 *  of a chunk stands for it.
 *
 *  A chunk waits until it is full, whatever the blocks of the caller; only the last one is handed
 *  on short, as soon as the declared length is reached. What is fed after that is ignored. */
class ChunkCollector {
public:
    static constexpr int kChunkFrames = 128;

    /** Envelope values that a track of `lengthFrames` frames yields: one per started chunk. */
    static std::size_t valueCount(int lengthFrames);

    void create(int lengthFrames);

    /** Starts again at the first frame of the same track. */
    void rewind();

    /** Takes one block and calls closeChunk(double first, std::size_t chunkIndex) for every chunk
     *  that it completes.
     *
     *  @param values  the filtered signal; null does nothing
     *  @param frames  in the block; ≤ 0 does nothing */
    template <class CloseChunk>
    void putSample(const double* values, int frames, CloseChunk&& closeChunk) {
        if (values == nullptr) return;
        int taken = 0;
        while (taken < frames && consumed_ < length_) {
            if (fill_ == 0) first_ = values[taken];
            taken += advance(frames - taken);
            if (!isChunkComplete()) return;
            closeChunk(first_, chunkIndex());
            fill_ = 0;
        }
    }

private:
    int advance(int frames);
    bool isChunkComplete() const { return fill_ == kChunkFrames || consumed_ >= length_; }
    std::size_t chunkIndex() const;

    std::int64_t length_ = 0;    // frames of the track
    std::int64_t consumed_ = 0;  // frames taken; may pass the length by the rest of a chunk
    int fill_ = 0;               // frames of the current chunk
    double first_ = 0.0;         // of the current chunk
};

}  // namespace beatatlas
