// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace peakss {

class PeakBuffer;

/** Follows the level of one band and reports its peaks, one at a time.
 *
 *  A threshold line lies over the level. A value on or above it opens a peak, a higher value moves
 *  the peak there, and 0.29 s without a higher one confirm it. The line starts at 75 % of the peak
 *  and holds for 1.7 s, falls to half the peak within 1.3 s, then halves every 1.3 s down to a
 *  floor: after a loud hit the softer ones between the beats are passed over, after a break the
 *  line has come down to the quiet passage.
 *
 *  A sensor may instead listen to another band's rectified signal less its moving mean, which shows
 *  onsets only.
 *
 *  Life: setSamplingRate() and setStep(), if wanted setDiffAnalyze() → per level putLevel();
 *  reset() starts over. Memory: the ring of the moving mean only, allocated in setDiffAnalyze().
 *  Positions wrap like int32. */
class PeakSensor {
public:
    PeakSensor() = default;
    PeakSensor(const PeakSensor&) = delete;
    PeakSensor& operator=(const PeakSensor&) = delete;

    /** Back to silence at position start; the design stays. */
    void reset(int start);

    /** Fits all lengths to the rate in Hz, then reset(0). */
    void setSamplingRate(int rate);

    void setStep(int samplesPerLevel) { step_ = samplesPerLevel; }

    /** The line's course in seconds and shares: hold t0 at r0 of the peak, fall for t1 to r1 of the
     *  peak, then falls of t2, each to r2 of the line. Uses the sampling rate set before. */
    void setLimitLine(float t0, float r0, float t1, float r1, float t2, float r2);

    /** Listens to band source less its moving mean over ms, of 2 samples at least. Uses the rate
     *  set before. */
    void setDiffAnalyze(float ms, int source);

    /** The next input less its moving mean, never negative; the input itself without difference
     *  analysis. */
    float getDiff(float x) {
        if (!diffOn_) return x;
        float& oldest = diffRing_[static_cast<std::size_t>(diffIdx_)];
        diffSum_ = diffSum_ + (x - oldest);
        oldest = x;
        const float y = x - (diffSum_ / static_cast<float>(diffLen_));
        diffIdx_ = diffIdx_ + 1 == diffLen_ ? 0 : diffIdx_ + 1;
        // Written so that what is not a number becomes 0 too.
        return y >= 0.0F ? y : 0.0F;
    }

    /** One sensor's part in a common call of getDiffs(); `out` is another array than `in`. */
    struct DiffBlock {
        PeakSensor* sensor;
        const float* in;
        float* out;
    };

    /** As n calls of getDiff() in turn of each of two different sensors, both with difference
     *  analysis. */
    static void getDiffs(const std::array<DiffBlock, 2>& blocks, int n);

    /** Takes the next level of the band; a peak it confirms goes into buffer at once. */
    void putLevel(float level, PeakBuffer& buffer);

    /** Takes levels from..to-1 as putLevel() does, as long as none confirms a peak.
     *  @return the index of the first that does, not taken yet, or `to` */
    int putQuietLevels(const float* levels, int from, int to);

    /** Position of the tracked or last confirmed peak, in samples. */
    std::int32_t peakPos() const { return peakPos_; }
    float peakLevel() const { return peakLevel_; }
    std::int32_t rate() const { return rate_; }
    /** Position of the latest level, in samples. */
    std::int32_t pos() const { return pos_; }
    float line() const { return line_; }
    bool isTracking() const { return state_ == kTracking; }
    /** −1: none, the band filters its own signal. */
    std::int32_t diffSource() const { return diffSource_; }

private:
    static constexpr std::int32_t kFollowing = 0;
    static constexpr std::int32_t kTracking = 1;

    bool isPeakOverAt(std::int32_t pos) const;
    void changes(const float* in, float* out, int n);
    void lessMean(const float* in, float* out, int n) const;
    int keepLastInputs(const float* in, int n);
    bool passesQuietly(const float* levels, int from, int to);
    float lineAfter(int levels) const;
    int followUntilPeak(const float* levels, int from, int to);
    int trackUntilMoved(const float* levels, int from, int to);
    void followLine(float level);
    void planFall();
    void startPeak(float level);

    std::int32_t state_ = kFollowing;
    std::int32_t confirmLen_ = 0;  // samples
    float line_ = 0.001F;
    float slope_ = 0.0F;      // fall of the line per sample
    float slopeStep_ = 0.0F;  // and per level
    float floor_ = 0.001F;
    std::int32_t linePhase_ = 0;  // 0: the first fall comes next, 1: a later one
    std::int32_t holdLen_ = 0;    // samples until the next fall is planned
    float ratio0_ = 0.75F;
    float ratio1_ = 0.5F;
    float ratio2_ = 0.5F;
    std::int32_t len0_ = 0;
    std::int32_t len1_ = 0;
    std::int32_t len2_ = 0;
    std::int32_t lineStart_ = 0;
    std::int32_t pos_ = 0;
    std::int32_t step_ = 16;
    float peakLevel_ = 0.0F;
    std::int32_t peakPos_ = 0;
    std::int32_t peakPos2_ = 0;
    std::int32_t rate_ = 0;
    std::int32_t diffSource_ = -1;
    bool diffOn_ = false;
    std::int32_t diffLen_ = 0;
    std::int32_t diffIdx_ = 0;
    std::unique_ptr<float[]> diffRing_;  // the last diffLen_ inputs
    float diffSum_ = 0.0F;
};

}  // namespace peakss
