// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "peakss/sensing/TempoVote.h"
#include "peakss/sensing/designBands.h"

namespace beatatlas {
class LVMakeBase;
}

namespace peakss {

class BeatSensorSignal;
class PeakBuffer;

/** Turns the rectified bands of a mono signal into beats: averages each over short steps, follows
 *  its level peaks, and lets all bands vote on the tempo. Each regular beat that a band finds at
 *  the tempo the vote agrees on goes to the receiver.
 *
 *  The six bands of a session: below 283 Hz; a band around 150 Hz; 283 to 6000 Hz; above 6000 Hz;
 *  the onsets of the first band (its level less a moving mean of 1 ms), and those of the fourth
 *  (0.2 ms). With another number of bands all are filtered, and none are onsets.
 *
 *  Life: setSignal(), create() → put() per block → release(); reset() starts over with the same
 *  design. Memory: per band a block of rate / 75 samples and a ring of peaks, allocated in
 *  create(), nothing in put(). Any cutting of the signal into blocks gives the same beats. */
class BeatSensor {
public:
    BeatSensor();
    BeatSensor(const BeatSensor&) = delete;
    BeatSensor& operator=(const BeatSensor&) = delete;
    ~BeatSensor();

    /** The receiver of the beats, null for none; it stays the caller's, and is kept by create and
     *  release. */
    void setSignal(BeatSensorSignal* signal) { signal_ = signal; }

    /** Returns true.
     *  @param rate        in Hz; below 75 there is no block, and put() does nothing
     *  @param start, end  samples whose peaks are followed: index i when start ≤ i + 1 < end
     *  @param decim       samples averaged into one level, at least 1
     *  @param bands       number of bands */
    bool create(int rate, int start, int end, int decim, int bands);

    /** Back to the start of a track. */
    void reset();

    void release();

    /** Takes the next n samples and sends their bands to loudView if it is not null; true when a
     *  beat was chosen. A null signal, n ≤ 0 and more than a block do nothing. Behind the end of
     *  the range only loudView is served.
     *  @param mono   full scale ±1.0; for loudView alone
     *  @param bands  of the n samples, filtered from the start of the track on by the filters of
     *                designBands()
     *  @param n      at most a block of rate / 75 samples */
    bool put(const float* mono, const BandSignals& bands, int n, beatatlas::LVMakeBase* loudView);

    /** Lets the bands that found a beat vote, and names the steadiest of them if the vote agrees
     *  with it: then the bands that disagree have lost their beat. Null when there is no such
     *  band. */
    PeakBuffer* selectBand();

    int bandNum() const { return bandNum_; }

private:
    struct Band;

    static std::unique_ptr<Band[]> makeBands(int rate, int blockLen, int decim, int bands);
    static void runAhead(Band& band, int from, int steps);
    bool isOver(const beatatlas::LVMakeBase* loudView) const;
    void makeOnsets(int n);
    void sendBands(const float* mono, const BandSignals& signals, int n,
                   beatatlas::LVMakeBase& loudView) const;
    bool senseBeats(int n);
    int closeSteps(int from, int to);
    bool followPeaks(int steps);
    bool takePeaks(int step, int steps);
    void clearBeats();
    void signalBeats();
    PeakBuffer* voteOfBands();
    bool settleVote(float interval);

    std::int32_t bandNum_ = 0;
    std::unique_ptr<Band[]> bands_;
    BeatSensorSignal* signal_ = nullptr;
    std::int32_t decim_ = 1;
    std::int32_t decimCount_ = 0;  // samples in the current step
    std::int32_t blockLen_ = 0;
    std::int32_t counter_ = 0;  // samples seen, up to the end of the range
    std::int32_t start_ = 0;
    std::int32_t end_ = 0;
    TempoVote vote_;
};

}  // namespace peakss
