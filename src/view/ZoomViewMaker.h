// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "dsp/SecondOrderSection.h"

namespace beatatlas {

/** One point of the zoom wave. */
struct ZoomPoint {
    /** Peak magnitude 0..32767; once scaled 0..31, on a square law. */
    std::int16_t level;
    /** 0 all bass … 7 no bass. */
    std::int16_t color;
};

/** Draws a track as one point per frame of rate / divisor samples: its peak, and how much of it is
 *  bass.
 *
 *  Bass is what a second-order Butterworth low-pass at 150 Hz leaves of the mono signal. Deferred,
 *  the levels stay raw peaks until the declared length has been fed and are then scaled together,
 *  relative to the loudest frame; otherwise each is scaled at once, relative to full scale.
 *
 *  Life: create() → putSample() per block, of any length → count() and points() at any time;
 *  create() again starts over. What is fed after the frame that reaches the declared length is
 *  ignored.
 *  Memory: the points of the whole track, allocated in create(), nothing in putSample(). */
class ZoomViewMaker {
public:
    ZoomViewMaker() = default;
    ZoomViewMaker(const ZoomViewMaker&) = delete;
    ZoomViewMaker& operator=(const ZoomViewMaker&) = delete;
    ~ZoomViewMaker() { release(); }

    /** @param total  declared frames per channel, at least 1
     *  @param divisor  points per second, at least 1 and at most rate
     *  @return false, with nothing held, when an argument is out of range. Throws std::bad_alloc,
     *          with nothing held, when the points find no memory. */
    bool create(int rate, int total, int divisor, bool deferred);

    /** Back to the state after create(). */
    void reset();

    /** Feeds n frames; n < 1, a null array or a maker without arrays does nothing.
     *
     *  @param stereo  n frames, left and right interleaved
     *  @param bass    n values: the mean of both channels, cut to a whole number, through
     *                 bassFilter() */
    void putSample(const std::int16_t* stereo, const double* bass, int n);

    /** What makes the bass of the mono signal; designed by create(). */
    const SecondOrderSection& bassFilter() const { return bassFilter_; }

    /** Scales every raw level made so far against the track's peak and returns count(). The
     *  deferred form does this by itself, once, when the declared length is reached. */
    int analyzeLV();

    /** Frees the arrays; safe to call twice. */
    void release();

    int count() const { return count_; }
    const ZoomPoint* points() const { return points_.get(); }

private:
    void designLowPass();
    int framesToTake(int left) const;
    void takeFrames(const std::int16_t* stereo, const double* bass, int n);
    void finishFrame();
    void analyzeZV();

    std::int32_t total_ = 0;
    std::int64_t fed_ = 0;  // passes total by up to one frame, which need not fit 32 bits
    std::int32_t fill_ = 0;
    std::int32_t rate_ = 0;
    std::int32_t frameLen_ = 0;
    std::int64_t capacity_ = 0;   // points
    std::int32_t framePeak_ = 0;  // of the frame in hand
    double bassPeak_ = 0.0;
    std::int32_t trackPeak_ = 0;
    std::int32_t count_ = 0;
    std::unique_ptr<ZoomPoint[]> points_;
    bool deferred_ = false;
    SecondOrderSection bassFilter_;
};

}  // namespace beatatlas
