// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** One level peak of a band. Levels are in 16-bit sample scale; the two detectors of a band fill a
 *  field each and number their records independently, so the fields of one record need not belong
 *  to the same moment. */
struct peak {
    /** Held level of the full-rate detector. */
    float level;
    /** Held level of the decimated detector (low and mid band only). */
    float level900;
    /** Samples since the peak before, when this record was closed. */
    std::int32_t interval;
    /** Samples since the peak before, when the held level last rose. */
    std::int32_t maxpos;
};

/** What record 0 holds until a first peak has been seen. */
inline constexpr float kNoPeakLevel = 0.01F;

}  // namespace beatatlas
