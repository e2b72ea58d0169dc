// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <vector>

#include "peakss/BeatInfo.h"
#include "peakss/grid/BandOffsets.h"

namespace peakss {

/** Writes one line per beat: group (or number in the bar), BPM, phase, position and band, separated
 *  by tabs.
 *
 *  Lines end in a bare line feed. The BPM is 60000 / interval in single precision, undivided by any
 *  check: an interval of 0 prints "inf". A null stream means standard output. */
void printBeatList(const BeatList& list, std::FILE* stream);

/** A text trace of the analysis: the list between any two stages. Writes nothing when its stream is
 *  null.
 *
 *  The text is UTF-8. Headers end in CR LF, list lines in LF alone: readers of the trace rely on
 *  the mix. */
class BeatListDump {
public:
    explicit BeatListDump(std::FILE* stream) : stream_(stream) {}

    void banner() const;
    /** A header, one line per beat, and an empty line. The header comes without its line end. */
    void section(const char* header, const BeatList& list) const;
    void representativeTempo(float bpm) const;
    /** How many beats of the grid each detection band has placed. */
    void bandCounts(const BeatList& grid) const;
    /** The band offsets of each segment, in ms. */
    void bandOffsets(const std::vector<BandOffsets>& segmentOffsets) const;

private:
    std::FILE* stream_;
};

}  // namespace peakss
