// SPDX-License-Identifier: MIT
#include "media/PcmChunk.h"

#include <algorithm>
#include <bit>

namespace media {

namespace {

// So many samples are looked at before it is decided whether to look at more: lossy decoders give themselves away at once.
constexpr std::size_t kProbeSamples = 512;

/** The 16-bit value of a sample that has one; of any other sample the value of another.
 *
 *  In floats from 256 to 512 the last bit counts 1/32,768: the sum has the value in its low bits. */
std::int16_t toInteger(float sample) {
    constexpr float kMiddle = 384.0F;
    return static_cast<std::int16_t>(std::bit_cast<std::uint32_t>(sample + kMiddle) -
                                     std::bit_cast<std::uint32_t>(kMiddle));
}

// Times a power of two: nothing is rounded.
float toFloat(std::int16_t value) {
    return static_cast<float>(value) * (1.0F / 32768.0F);
}

/** @return false when a sample would come back with other bits */
bool toIntegers(const float* samples, std::size_t count, std::int16_t* integers) {
    for (std::size_t from = 0; from < count; from += kProbeSamples) {
        const std::size_t to = std::min(count, from + kProbeSamples);
        std::uint32_t differing = 0;
        for (std::size_t i = from; i < to; ++i) {
            const std::int16_t value = toInteger(samples[i]);
            integers[i] = value;
            differing |= std::bit_cast<std::uint32_t>(samples[i]) ^
                         std::bit_cast<std::uint32_t>(toFloat(value));
        }
        if (differing != 0) return false;
    }
    return true;
}

}  // namespace

PcmChunk::PcmChunk(const StereoBlock& block)
    : frames_(block.frames()),
      integers_(std::make_unique_for_overwrite<std::int16_t[]>(2 * frames_)) {
    if (toIntegers(block.left.data(), frames_, integers_.get()) &&
        toIntegers(block.right.data(), frames_, integers_.get() + frames_))
        return;
    integers_.reset();
    floats_ = std::make_unique_for_overwrite<float[]>(2 * frames_);
    std::copy_n(block.left.data(), frames_, floats_.get());
    std::copy_n(block.right.data(), frames_, floats_.get() + frames_);
}

void PcmChunk::copy(std::size_t from, std::size_t count, float* left, float* right) const {
    if (integers_) {
        std::transform(integers_.get() + from, integers_.get() + from + count, left, toFloat);
        const std::int16_t* second = integers_.get() + frames_ + from;
        std::transform(second, second + count, right, toFloat);
        return;
    }
    std::copy_n(floats_.get() + from, count, left);
    std::copy_n(floats_.get() + frames_ + from, count, right);
}

}  // namespace media
