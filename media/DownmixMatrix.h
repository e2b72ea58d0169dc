// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

struct AVChannelLayout;

namespace media {

/** The gains with which one channel is added to the left and the right side. */
struct DownmixGain {
    float left;
    float right;
};

/** One gain per channel of the layout, by the usual rule for folding surround to stereo (ITU-R
 *  BS.775): front channels at full level, centre and surrounds at -3 dB, no low-frequency effects
 *  channel. All gains are then reduced by the same factor, so that no side can exceed full scale. A
 *  single channel goes to both sides at full level. Channels without a known position alternate
 *  between left and right. */
std::vector<DownmixGain> downmixGains(const AVChannelLayout& layout);

}  // namespace media
