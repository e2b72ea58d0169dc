// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

struct AVChannelLayout;

namespace media {

/** How much of one channel goes to the left and the right of the stereo sum. */
struct DownmixGain {
    float left;
    float right;
};

/** One gain per channel of the layout, by the usual rule for folding surround to stereo (ITU-R
 *  BS.775): front channels whole, centre and surrounds at -3 dB, no low-frequency effects channel.
 *  The gains are then lowered together until no side can exceed full scale. One channel alone goes
 *  to both sides whole. Channels without a known place alternate left and right. */
std::vector<DownmixGain> downmixGains(const AVChannelLayout& layout);

}  // namespace media
