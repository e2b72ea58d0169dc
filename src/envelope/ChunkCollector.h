// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace beatatlas {

/** Cuts the fed audio into mono chunks of 128 frames, the grain of the level envelopes.
 *
 *  A chunk waits until it is full, whatever the blocks of the caller; only the last one is handed
 *  on short, as soon as the declared length is reached. What is fed after that is ignored, except
 *  that the last chunk takes what the completing block still holds for it. */
class ChunkCollector {
public:
    static constexpr int kChunkFrames = 128;

    /** Envelope values that a track of `lengthFrames` frames yields: one per started chunk. */
    static std::size_t valueCount(int lengthFrames);

    void create(int lengthFrames);

    /** Starts again at the first frame of the same track. */
    void rewind();

    /** Takes one block and calls closeChunk(const double* mono, int frames, std::size_t chunkIndex)
     *  for every chunk that it completes.
     *
     *  @param samples  interleaved left, right; null does nothing
     *  @param frames   frames in the block; ≤ 0 does nothing */
    template <class CloseChunk>
    void putSample(const std::int16_t* samples, int frames, CloseChunk&& closeChunk) {
        if (samples == nullptr) return;
        int taken = 0;
        while (taken < frames && consumed_ < length_) {
            taken += take(samples + 2 * static_cast<std::size_t>(taken), frames - taken);
            if (!isChunkComplete()) return;
            closeChunk(chunkBuffer_.data(), fill_, chunkIndex());
            fill_ = 0;
        }
    }

    /** As putSample() for a signal that has been through the maker's audio filter already: calls
     *  closeChunk(double first, std::size_t chunkIndex) with each chunk's first value, which stands
     *  for the chunk. A track is fed in this way or in the other, not in both. */
    template <class CloseChunk>
    void putFiltered(const double* values, int frames, CloseChunk&& closeChunk) {
        if (values == nullptr) return;
        int taken = 0;
        while (taken < frames && consumed_ < length_) {
            if (fill_ == 0) chunkBuffer_[0] = values[taken];
            taken += advance(frames - taken);
            if (!isChunkComplete()) return;
            closeChunk(chunkBuffer_[0], chunkIndex());
            fill_ = 0;
        }
    }

private:
    int advance(int frames);
    int take(const std::int16_t* samples, int frames);
    bool isChunkComplete() const { return fill_ == kChunkFrames || consumed_ >= length_; }
    std::size_t chunkIndex() const;

    std::int64_t length_ = 0;    // frames of the track
    std::int64_t consumed_ = 0;  // frames taken; may pass the length by the rest of a chunk
    int fill_ = 0;               // frames of the current chunk
    std::array<double, kChunkFrames> chunkBuffer_{};
};

}  // namespace beatatlas
