// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Whether n samples are half a minute and more: there the utilities take longer hops, and keys are
 *  weighed otherwise. Compared in single precision. */
inline bool isLongTrack(long n, float rate) {
    return static_cast<float>(n) >= 30.0F * rate;
}

}  // namespace beatatlas
