// SPDX-License-Identifier: MIT
#include "media/PcmChunk.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "media/PcmMemory.h"

namespace media {

namespace {

// This many samples are examined first: the output of lossy decoders is recognised at once.
constexpr std::size_t kProbeSamples = 512;

/** The 16-bit value of a sample that has one; for any other sample, some other value.
 *
 *  In floats from 256 to 512 the last bit is worth 1/32,768: the sum has the value in its low
 *  bits. */
std::int16_t toInteger(float sample) {
    constexpr float kMiddle = 384.0F;
    return static_cast<std::int16_t>(std::bit_cast<std::uint32_t>(sample + kMiddle) -
                                     std::bit_cast<std::uint32_t>(kMiddle));
}

// Multiplied by a power of two: nothing is rounded.
float toFloat(std::int16_t value) {
    return static_cast<float>(value) * (1.0F / 32768.0F);
}

/** Whether every sample is restored from its integer with the same bits. */
bool areIntegers(const std::vector<float>& samples) {
    for (std::size_t from = 0; from < samples.size(); from += kProbeSamples) {
        const std::size_t to = std::min(samples.size(), from + kProbeSamples);
        std::uint32_t differing = 0;
        for (std::size_t i = from; i < to; ++i)
            differing |= std::bit_cast<std::uint32_t>(samples[i]) ^
                         std::bit_cast<std::uint32_t>(toFloat(toInteger(samples[i])));
        if (differing != 0) return false;
    }
    return true;
}

}  // namespace

PcmChunk::PcmChunk(const StereoBlock& block, PcmMemory& memory)
    : frames_(block.frames()), isInteger_(areIntegers(block.left) && areIntegers(block.right)),
      samples_(memory.take(bytes())) {
    if (isInteger_) {
        auto* integers = reinterpret_cast<std::int16_t*>(samples_.get());
        std::transform(block.left.begin(), block.left.end(), integers, toInteger);
        std::transform(block.right.begin(), block.right.end(), integers + frames_, toInteger);
    } else {
        auto* floats = reinterpret_cast<float*>(samples_.get());
        std::copy(block.left.begin(), block.left.end(), floats);
        std::copy(block.right.begin(), block.right.end(), floats + frames_);
    }
}

void PcmChunk::copy(std::size_t from, std::size_t count, float* left, float* right) const {
    if (isInteger_) {
        const auto* first = reinterpret_cast<const std::int16_t*>(samples_.get()) + from;
        std::transform(first, first + count, left, toFloat);
        std::transform(first + frames_, first + frames_ + count, right, toFloat);
    } else {
        const auto* first = reinterpret_cast<const float*>(samples_.get()) + from;
        std::copy_n(first, count, left);
        std::copy_n(first + frames_, count, right);
    }
}

}  // namespace media
