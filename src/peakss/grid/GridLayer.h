// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"
#include "peakss/grid/AnchorWalk.h"
#include "peakss/grid/BandOffsets.h"
#include "peakss/grid/LaidGrid.h"

namespace peakss {

/** The window that slides along a segment, in beats: the tempo of the whole phrase is that of its bar, which has
 *  the front beats before it and the back beats behind it. */
struct GridPhrase {
    int barBeats = 4;
    int frontBeats = 0;
    int backBeats = 0;
};

/** Lays a beat grid segment by segment, and carries over what one segment leaves to the next.
 *
 *  A segment is walked at its own tempo, snapping to raw beats; each time a whole phrase lies behind the walk,
 *  its mean beat length is measured between the anchors at its ends, and the phrase's bar is laid at that length.
 *
 *  The raw list must outlive the layer and be ordered by position. A phrase without a bar, or with a negative
 *  part, counts as plain bars of four beats. */
class GridLayer {
public:
    GridLayer(const BeatList& raw, const GridPhrase& phrase, int samplingRate);

    /** Continues the grid with a segment. One whose beat is no tempo lays nothing.
     *
     *  @param end  samples; no beat is laid at it or behind it */
    void laySegment(const BeatInfo& record, const BandOffsets& offsetsMs, int end);

    /** The grid; its last beat takes the last measured length. */
    LaidGrid finish();

private:
    /** The segment in hand. */
    struct Segment {
        BeatInfo record;
        BandOffsets offsetsMs;
        double end;            // samples
        double beatSamples;    // of the segment's own interval
        std::int32_t gridEnd;  // position of the last beat of the segments before
        double origin;         // of the phrase, samples
        bool isHeadLaid;
        int frontBeatsLaid;
        AnchorWalk walk;
    };

    Segment beginSegment(const BeatInfo& record, const BandOffsets& offsetsMs, int end);
    void layPhrase(Segment& segment);
    void layPartPhrase(Segment& segment);
    void layHeadAndFront(Segment& segment);
    void layHead(const Segment& segment);
    void layFront(Segment& segment);
    void layBeatsBehind(const Segment& segment, std::int64_t count);
    void continueToEnd(const Segment& segment);

    void layAnchorPlace(const Segment& segment, double pos, std::int64_t place);
    void layPlain(const Segment& segment, double pos);
    void tellLength();
    double measure(const Segment& segment, std::int64_t places) const;

    const BeatList& raw_;
    GridPhrase phrase_;
    std::int64_t phrasePlaces_;  // quarter beats
    int samplingRate_;
    double samplesPerMs_;
    bool hasOrigin_ = false;
    double carriedOffsetMs_;    // for a phrase end that no band has heard
    double beatSamples_ = 0.0;  // as last measured
    LaidGrid grid_;
};

}  // namespace peakss
