// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "dsp/CascadeLayout.h"

namespace beatatlas {

/** What a session filters at the full rate: the plan of its filter bank. */
struct SessionCascades {
    /** A block of 1/75 s at 48,000 Hz. */
    static constexpr int kMostSamples = 640;

    /** The mean of both channels in float, full scale ±1.0; the mean of the 16-bit channels; its
     *  whole part. */
    enum Signal : std::size_t { kMono, kMean, kWholeMean, kSignals };

    /** The cascades in their order: the bass of the zoom wave and of the simple envelope, the
     *  pulses of the unit envelope, and the bands of the beat sensor and the loudness view. */
    enum Name : std::size_t { kBass, kBassLine, kPulses, kMid, kLow, kDrum, kHigh, kViewLow };

    using Output = Cascade::Output;
    static constexpr std::array<Cascade, 8> kCascades = {{
        // Over the 16-bit channels.
        {kWholeMean, 1, Output::values},
        {kMean, 1, Output::values},
        {kMean, 2, Output::values},
        // Over the mono signal.
        {kMono, 4, Output::magnitudes},
        {kMono, 2, Output::magnitudes},
        {kMono, 2, Output::magnitudes},
        {kMono, 2, Output::magnitudes},
        {kMono, 2, Output::magnitudes},
    }};
};

}  // namespace beatatlas
