// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Half a minute and more: there the utilities take longer hops. Compared in single precision. */
inline bool isLongTrack(int sampleCount, float rate) {
    return static_cast<float>(sampleCount) >= 30.0F * rate;
}

}  // namespace beatatlas
