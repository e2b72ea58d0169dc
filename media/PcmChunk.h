// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "media/StereoBlock.h"

namespace media {

/** A stretch of stereo audio in memory, given back bit for bit.
 *
 *  Music that comes from 16-bit samples is kept in them, which is half the room; where a single sample is none of the
 *  65,536 values, or a zero with a sign, the whole stretch stays in floats. */
class PcmChunk {
public:
    /** @throws std::bad_alloc */
    explicit PcmChunk(const StereoBlock& block);

    std::size_t frames() const { return frames_; }
    std::size_t bytes() const { return 2 * frames_ * (integers_ ? sizeof *integers_.get() : 4); }
    bool isInteger() const { return integers_ != nullptr; }

    /** Copies frames from a place on. What is asked for must be there. */
    void copy(std::size_t from, std::size_t count, float* left, float* right) const;

private:
    std::size_t frames_;
    std::unique_ptr<std::int16_t[]> integers_;  ///< left, then right; or none
    std::unique_ptr<float[]> floats_;           ///< the same
};

}  // namespace media
