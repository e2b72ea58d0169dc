// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** What was gathered over so many chunks (a chunk is 1/75 s), brought to half a second: points of
 *  short and of long tracks then compare. */
inline float perHalfSecond(float sum, float chunks) {
    return (sum * 75.0F) / (chunks + chunks);
}

}  // namespace beatatlas
