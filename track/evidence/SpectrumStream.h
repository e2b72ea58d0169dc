// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "track/evidence/FrameSpectra.h"

namespace beatatlas::track::inner {

/** Evenly spaced spectra of a stream of samples: frame i is centred on sample i × step, rounded.
 *  The stream is padded with silence on both sides. Frames are computed in batches that do not
 *  depend on the caller's blocks.
 *
 *  Life: construct → put() per block → finish() with the number of frames wanted. put() allocates
 *  nothing. */
class SpectrumStream {
public:
    static constexpr int kLength = 1024;

    /** @param step    hop between frames in samples, 1 … length
     *  @param length  frame length in samples, under a periodic Hann window; a power of two of at
     *                 least 64 */
    explicit SpectrumStream(double step, int length = kLength);

    /** Takes the next samples and calls take(const FrameSpectra&, int count) for each complete
     *  batch: the next `count` frames. */
    template <class Take>
    void put(const float* samples, std::int64_t count, const Take& take) {
        while (count > 0) {
            const std::int64_t taken = append(samples, count);
            samples += taken;
            count -= taken;
            if (isBatchComplete()) transformBatch(FrameSpectra::kFrames, take);
        }
    }

    /** Appends silence until `frames` frames in all have been taken. */
    template <class Take>
    void finish(std::int64_t frames, const Take& take) {
        while (nextFrame_ < frames) {
            appendSilence();
            const std::int64_t left = frames - nextFrame_;
            transformBatch(left < FrameSpectra::kFrames ? static_cast<int>(left)
                                                        : FrameSpectra::kFrames,
                           take);
        }
    }

private:
    template <class Take>
    void transformBatch(int frames, const Take& take) {
        std::array<std::ptrdiff_t, FrameSpectra::kFrames> starts;
        for (int f = 0; f < frames; ++f)
            starts[static_cast<std::size_t>(f)] =
                static_cast<std::ptrdiff_t>(startOf(nextFrame_ + f) - bufferStart_);
        spectra_.transform(buffer_.data(), starts.data(), frames);
        nextFrame_ += frames;
        take(static_cast<const FrameSpectra&>(spectra_), frames);
        forgetUsed();
    }

    std::int64_t startOf(std::int64_t frame) const;
    std::int64_t batchEnd() const;
    bool isBatchComplete() const;
    std::int64_t append(const float* samples, std::int64_t count);
    void appendSilence();
    void forgetUsed();

    double step_;
    std::int64_t length_;
    FrameSpectra spectra_;
    std::vector<float> buffer_;
    // Position of the buffer's first sample in the stream.
    std::int64_t bufferStart_;
    // Samples in the buffer.
    std::int64_t filled_;
    std::int64_t nextFrame_ = 0;
};

}  // namespace beatatlas::track::inner
