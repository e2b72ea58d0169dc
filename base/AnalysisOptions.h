// SPDX-License-Identifier: MIT
#pragma once

namespace base {

enum class TempoMode {
    constant,  ///< one tempo for the whole track
    varied,    ///< the tempo may change along the track
    simple,    ///< sensed in the first part of the track only, one regular grid over all of it
    off,       ///< no tempo and no beats
};

/** What is to be found out about a track. */
struct AnalysisOptions {
    TempoMode tempo = TempoMode::constant;
    int sectionBeats =
        32;  ///< varied tempo: length in beats of the phrase over which the tempo is measured
    double rangeSeconds = 0;  ///< simple: how much of the beginning is sensed; 0: one minute
    bool wantsKey = true;
    bool wantsWaves = true;
};

}  // namespace base
