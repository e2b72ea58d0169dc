// SPDX-License-Identifier: MIT
#include "media/OverloadMeter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace media {

namespace {

void look(base::Overload& overload, float sample) {
    const float level = std::fabs(sample);
    if (std::isnan(sample)) ++overload.notNumbers;
    if (!(level > 1.0F)) return;
    ++overload.clipped;
    overload.peak = std::max(overload.peak, level);
}

void count(base::Overload& overload, const std::vector<float>& samples) {
    overload.heard += std::ssize(samples);
    // Nearly always there are none; counting them runs in vector lanes.
    int beyond = 0;
    for (const float sample : samples) beyond += std::fabs(sample) <= 1.0F ? 0 : 1;
    if (beyond == 0) return;
    for (const float sample : samples) look(overload, sample);
}

bool hasEqualSides(const StereoBlock& block) {
    const std::size_t bytes = block.frames() * sizeof(float);
    return bytes == 0 || std::memcmp(block.left.data(), block.right.data(), bytes) == 0;
}

}  // namespace

void OverloadMeter::put(const std::vector<float>& samples) {
    count(left_, samples);
}

void OverloadMeter::put(const StereoBlock& block) {
    isMono_ = isMono_ && hasEqualSides(block);
    count(left_, block.left);
    count(right_, block.right);
}

base::Overload OverloadMeter::overload() const {
    if (isMono_) return left_;
    return {left_.heard + right_.heard, left_.clipped + right_.clipped,
            std::max(left_.peak, right_.peak), left_.notNumbers + right_.notNumbers};
}

}  // namespace media
