// SPDX-License-Identifier: MIT
#include "peakss/grid/layGrid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "peakss/grid/AnchorWalk.h"
#include "peakss/grid/beatLength.h"
#include "peakss/grid/segments.h"

namespace peakss {

using beatatlas::truncToInt32;

namespace {

GridPhrase usablePhrase(const GridPhrase& phrase) {
    const bool isUsable = phrase.barBeats > 0 && phrase.frontBeats >= 0 && phrase.backBeats >= 0;
    return isUsable ? phrase : GridPhrase{};
}

std::int64_t quartersOf(const GridPhrase& phrase) {
    const std::int64_t beats =
        static_cast<std::int64_t>(phrase.barBeats) + phrase.frontBeats + phrase.backBeats;
    return beats * kQuartersPerBeat;
}

// From a segment's start to its best origin, by whole beats; never to the end or past it.
double skipBeats(double start, int beats, double beatSamples, double end) {
    double position = start;
    for (int i = 0; i < beats && position + beatSamples < end; ++i) position += beatSamples;
    return position;
}

/** Lays a beat grid segment by segment, and carries over what one segment leaves to the next.
 *
 *  A segment is walked at its own tempo, snapping to raw beats; each time a whole phrase lies
 *  behind the walk, its mean beat length is measured between the anchors at its ends, and the
 *  phrase's bar is laid at that length.
 *
 *  The raw list must outlive the layer and be ordered by position. A phrase without a bar, or with
 *  a negative part, counts as plain bars of four beats. */
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

    void layBeat(const Segment& segment, double pos, std::int64_t quarter);
    void layPlain(const Segment& segment, double pos);
    void tellLength();
    double measure(const Segment& segment, std::int64_t quarters) const;

    const BeatList& raw_;
    GridPhrase phrase_;
    std::int64_t phraseQuarters_;  // quarter beats
    int samplingRate_;
    double samplesPerMs_;
    bool hasOrigin_ = false;
    double carriedOffsetMs_;    // for a phrase end that no band has heard
    double beatSamples_ = 0.0;  // as last measured
    LaidGrid grid_;
};

GridLayer::GridLayer(const BeatList& raw, const GridPhrase& phrase, int samplingRate)
    : raw_(raw), phrase_(usablePhrase(phrase)), phraseQuarters_(quartersOf(phrase_)),
      samplingRate_(samplingRate), samplesPerMs_(samplesPerMs(samplingRate)),
      carriedOffsetMs_(largestOffset(kDetectorOffsetsMs)) {}

void GridLayer::laySegment(const BeatInfo& record, const BandOffsets& offsetsMs, int end) {
    const double beatSamples = static_cast<double>(record.interval) * samplesPerMs_;
    if (!isWalkableBeat(beatSamples, samplingRate_)) return;
    Segment segment = beginSegment(record, offsetsMs, end);
    beatSamples_ = beatSamples;
    while (segment.walk.position() < segment.end) {
        beatatlas::yieldProcessor();
        segment.walk.walkBeat();
        if (segment.walk.quarter() == phraseQuarters_) layPhrase(segment);
    }
    if (segment.walk.quarter() > 0) layPartPhrase(segment);
    continueToEnd(segment);
}

LaidGrid GridLayer::finish() {
    tellLength();
    return std::move(grid_);
}

GridLayer::Segment GridLayer::beginSegment(const BeatInfo& record, const BandOffsets& offsetsMs,
                                           int end) {
    const double beatSamples = static_cast<double>(record.interval) * samplesPerMs_;
    Segment segment{.record = record,
                    .offsetsMs = offsetsMs,
                    .end = static_cast<double>(end),
                    .beatSamples = beatSamples,
                    .gridEnd = grid_.beats.empty() ? 0 : grid_.beats.back().pos,
                    .origin = 0.0,
                    .isHeadLaid = false,
                    .frontBeatsLaid = 0,
                    .walk = AnchorWalk(raw_, beatSamples, anchorSpacing(record),
                                       snapTolerance(beatSamples, samplingRate_))};
    segment.walk.begin(skipBeats(record.pos, skippedBeats(record), beatSamples, segment.end));
    const double offsetMs = bandOffset(offsetsMs, segment.walk.bandAt(0), carriedOffsetMs_);
    segment.origin = segment.walk.position() + offsetMs * samplesPerMs_;
    if (!std::exchange(hasOrigin_, true)) grid_.firstOrigin = truncToInt32(segment.origin);
    return segment;
}

// A whole phrase lies behind the walk. Its bar is laid and becomes the last bar of the next
// phrase's front.
void GridLayer::layPhrase(Segment& segment) {
    beatSamples_ = measure(segment, phraseQuarters_);
    layHeadAndFront(segment);
    layBeatsBehind(segment, phrase_.barBeats);

    const auto frontBeats = static_cast<std::size_t>(phrase_.frontBeats);
    const std::size_t last = grid_.beats.size() - 1;
    segment.origin = grid_.beats[last - std::min(frontBeats, last)].pos;
    segment.walk.slide(static_cast<std::int64_t>(phrase_.frontBeats) * kQuartersPerBeat,
                       static_cast<std::int64_t>(phrase_.barBeats) * kQuartersPerBeat);
}

// The segment ends inside a phrase, which is then measured as far as it was walked.
void GridLayer::layPartPhrase(Segment& segment) {
    const std::int64_t quarters = segment.walk.quarter();
    beatSamples_ = measure(segment, quarters);
    // Stands in for the default in all later segments: the band heard last is likely to go on being
    // heard.
    carriedOffsetMs_ =
        bandOffset(segment.offsetsMs, segment.walk.bandAt(quarters), carriedOffsetMs_);
    layHeadAndFront(segment);
    layBeatsBehind(segment, quarters / kQuartersPerBeat - phrase_.frontBeats);
}

void GridLayer::layHeadAndFront(Segment& segment) {
    if (!std::exchange(segment.isHeadLaid, true)) layHead(segment);
    layFront(segment);
    tellLength();
}

// The beats back to the segment's start, as far as the grid has none there, and the origin itself.
void GridLayer::layHead(const Segment& segment) {
    const double room = std::max(segment.origin - segment.gridEnd, 0.0) / beatSamples_;
    const std::int64_t beatsThatFit = static_cast<std::int64_t>(room) + 2;
    const std::int64_t wanted = static_cast<std::int64_t>(skippedBeats(segment.record)) + 1;
    for (std::int64_t j = std::min(wanted, beatsThatFit); j >= 1; --j) {
        const double pos = segment.origin - static_cast<double>(j) * beatSamples_;
        if (truncToInt32(pos) >= segment.gridEnd) layPlain(segment, pos);
    }
    layBeat(segment, segment.origin, 0);
    grid_.beats.back().segHead = true;
}

void GridLayer::layFront(Segment& segment) {
    while (segment.frontBeatsLaid < phrase_.frontBeats) {
        segment.origin += beatSamples_;
        if (segment.origin >= segment.end) break;
        ++segment.frontBeatsLaid;
        layBeat(segment, segment.origin,
                static_cast<std::int64_t>(segment.frontBeatsLaid) * kQuartersPerBeat);
    }
}

// The beats of a phrase behind its front, counted from the last beat laid.
void GridLayer::layBeatsBehind(const Segment& segment, std::int64_t count) {
    double pos = grid_.beats.back().pos;
    for (std::int64_t j = 1; j <= count; ++j) {
        pos += beatSamples_;
        if (pos >= segment.end) break;
        layBeat(segment, pos, (phrase_.frontBeats + j) * kQuartersPerBeat);
    }
}

void GridLayer::continueToEnd(const Segment& segment) {
    if (grid_.beats.empty()) return;
    double pos = grid_.beats.back().pos + beatSamples_;
    for (; pos < segment.end; pos += beatSamples_) layPlain(segment, pos);
}

void GridLayer::layBeat(const Segment& segment, double pos, std::int64_t quarter) {
    layPlain(segment, pos);
    if (!segment.walk.isAnchor(quarter)) return;
    const int band = segment.walk.bandAt(quarter);
    grid_.beats.back().band = band;
    if (!isDetectorBand(band)) return;
    const int index = static_cast<int>(grid_.beats.size()) - 1;
    (grid_.firstAnchor < 0 ? grid_.firstAnchor : grid_.lastAnchor) = index;
}

void GridLayer::layPlain(const Segment& segment, double pos) {
    BeatInfo beat;
    beat.pos = truncToInt32(pos);
    beat.interval = segment.record.interval;
    beat.band = AnchorWalk::kNoBand;
    grid_.beats.push_back(beat);
}

// Only the beats before a bar, and the last of all, take the measured length; the others keep the
// segment's.
void GridLayer::tellLength() {
    if (grid_.beats.empty()) return;
    grid_.beats.back().interval = static_cast<float>(beatSamples_ / samplesPerMs_);
}

// The mean beat length from the phrase's origin to the walk, the latter moved by how late its band
// is heard.
double GridLayer::measure(const Segment& segment, std::int64_t quarters) const {
    const int band = segment.walk.bandAt(quarters);
    const double offsetMs = bandOffset(segment.offsetsMs, band, carriedOffsetMs_);
    const double walked = (segment.walk.position() - segment.origin) * kQuartersPerBeat;
    const double late = (offsetMs * samplesPerMs_) * kQuartersPerBeat;
    const double beatSamples = (walked + late) / static_cast<double>(quarters);
    // Snapping cannot shorten a beat this far unless the raw list holds more than one pulse can
    // meet.
    return isWalkableBeat(beatSamples, samplingRate_) ? beatSamples : segment.beatSamples;
}

}  // namespace

LaidGrid layGrid(const BeatList& segments, const std::vector<BandOffsets>& offsetsMs,
                 const BeatList& raw, const GridPhrase& phrase, int length, int samplingRate) {
    GridLayer layer(raw, phrase, samplingRate);
    for (std::size_t i = 0; i < segments.size(); ++i)
        layer.laySegment(segments[i], offsetsMs[i], segmentEnd(segments, i, length));
    return layer.finish();
}

}  // namespace peakss
