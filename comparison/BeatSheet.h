// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

namespace comparison {

/** A beat as somebody or something found it. */
struct SheetBeat {
    double seconds = 0.0;
    /** Its number within the bar, 1 the downbeat; 0: within the bar, no more is known; nothing: not
     *  even that is. */
    std::optional<int> number;

    bool isDownbeat() const { return number == 1; }
};

/** What one source says of a track. */
struct BeatSheet {
    std::vector<SheetBeat> beats;  ///< in order of time
    std::optional<double> bpm;     ///< as it is stated, else that of most beats
    std::optional<int> key;        ///< as the library numbers it: 0 to 23

    /** Whether it says which beats are downbeats. */
    bool hasBars() const {
        for (const SheetBeat& beat : beats) {
            if (beat.isDownbeat()) return true;
        }
        return false;
    }
};

}  // namespace comparison
