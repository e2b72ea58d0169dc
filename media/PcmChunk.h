// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "media/StereoBlock.h"

namespace media {

class PcmMemory;

/** A stretch of stereo audio in memory, given back bit for bit.
 *
 *  Music that comes from 16-bit samples is kept in them, which is half the room; where a single
 *  sample is none of the 65,536 values, or a zero with a sign, the whole stretch stays in
 *  floats. */
class PcmChunk {
public:
    /** @param memory  where the samples are kept  @throws std::bad_alloc */
    PcmChunk(const StereoBlock& block, PcmMemory& memory);

    std::size_t frames() const { return frames_; }
    std::size_t bytes() const {
        return 2 * frames_ * (isInteger_ ? sizeof(std::int16_t) : sizeof(float));
    }
    bool isInteger() const { return isInteger_; }

    /** Copies frames from a place on. What is asked for must be there. */
    void copy(std::size_t from, std::size_t count, float* left, float* right) const;

private:
    std::size_t frames_;
    bool isInteger_;
    std::shared_ptr<std::byte> samples_;  ///< left, then right
};

}  // namespace media
