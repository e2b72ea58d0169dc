// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>

#include "peakss/BeatInfo.h"

namespace peakss {

/** What the analysis of a beat list is given. */
struct BeatInfoAnalyzeInfo {
    /** Detection bands of the beat sensor; not read by the analysis. */
    std::int32_t bandNum = 0;
    /** Working copy of the raw list; candidates are erased from it. */
    BeatList* beatList = nullptr;
};

/** Turns the raw beat candidates of a track into a tempo and a beat grid numbered into bars.
 *
 *  Built for one analysis. Prints its progress to standard output unless setQuiet() forbids it;
 *  with a debug stream it also writes there the list between any two stages. Computes under
 *  round-toward-zero, which the caller has set. */
class BeatInfoAnalyzer {
public:
    void setSamplingRate(int samplingRate) { samplingRate_ = samplingRate; }
    /** Whether standard output stays untouched. */
    void setQuiet(bool isQuiet) { isQuiet_ = isQuiet; }
    /** Null, as at first, for no trace. The stream is neither owned nor closed. */
    void setDebugStream(std::FILE* stream) { debugStream_ = stream; }

    /** Analyses a track's candidates.
     *
     *  @param info        its beatList is edited in place and is no result
     *  @param out         replaced by the grid, one record per beat with its number in the bar as
     *                     group; untouched when there is no tempo. Beats may lie anywhere from 0 to
     *                     length, so the first one need not be number 1
     *  @param length      of the track in samples
     *  @param barBeats    beats per bar, and the front and back beats of the phrase its tempo is
     *                     measured over
     *  @param varied      whether the tempo may change along the track
     *  @return BPM; 0 when there is no tempo. For a constant tempo that of the even grid, for a
     *          varied one that of the longest segment */
    float analyze(BeatInfoAnalyzeInfo* info, BeatList& out, int length, int barBeats,
                  int frontBeats, int backBeats, bool varied);

private:
    [[maybe_unused]] std::int32_t reserved_ =
        1024;  // part of the object's layout; nothing here reads it
    std::int32_t samplingRate_ = 48000;
    std::FILE* debugStream_ = nullptr;
    bool isQuiet_ = false;
};

}  // namespace peakss
