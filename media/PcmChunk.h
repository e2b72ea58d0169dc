// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "media/StereoBlock.h"

namespace media {

class PcmMemory;

/** A chunk of stereo audio in memory, returned bit for bit.
 *
 *  Music decoded from 16-bit samples is kept as such, which takes half the memory; if a single
 *  sample is none of the 65,536 values, or a negative zero, the whole chunk is kept in floats. */
class PcmChunk {
public:
    /** @param memory  where the samples are kept  @throws std::bad_alloc */
    PcmChunk(const StereoBlock& block, PcmMemory& memory);

    std::size_t frames() const { return frames_; }
    std::size_t bytes() const {
        return 2 * frames_ * (isInteger_ ? sizeof(std::int16_t) : sizeof(float));
    }
    bool isInteger() const { return isInteger_; }

    /** Copies frames, the first one at index `from`. All of them must exist. */
    void copy(std::size_t from, std::size_t count, float* left, float* right) const;

private:
    std::size_t frames_;
    bool isInteger_;
    std::shared_ptr<std::byte> samples_;  // left, then right
};

}  // namespace media
