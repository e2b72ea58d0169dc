// SPDX-License-Identifier: MIT
#include "media/OverloadMeter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace media {

void OverloadMeter::put(const std::vector<float>& samples) {
    overload_.heard += std::ssize(samples);
    // Nearly always there are none; counting them runs in vector lanes.
    int beyond = 0;
    for (const float sample : samples) beyond += std::fabs(sample) <= 1.0F ? 0 : 1;
    if (beyond > 0) std::for_each(samples.begin(), samples.end(), [this](float s) { look(s); });
}

void OverloadMeter::put(const StereoBlock& block) {
    put(block.left);
    // A mono track has the same samples on both sides: they count once.
    const std::size_t bytes = block.frames() * sizeof(float);
    const bool isMono =
        bytes == 0 || std::memcmp(block.left.data(), block.right.data(), bytes) == 0;
    if (!isMono) put(block.right);
}

void OverloadMeter::look(float sample) {
    const float level = std::fabs(sample);
    if (std::isnan(sample)) ++overload_.notNumbers;
    if (!(level > 1.0F)) return;
    ++overload_.clipped;
    overload_.peak = std::max(overload_.peak, level);
}

}  // namespace media
