// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "view/AverageLevel.h"
#include "view/AverageStrip.h"
#include "view/DotsBand.h"
#include "view/LVMakeBase.h"
#include "view/LoudBand.h"
#include "view/LoudPoint.h"
#include "view/WavePoint.h"

namespace beatatlas {

/** Draws a whole track as a strip of 400 loudness points, coloured by the balance of its bands, and
 *  one of 100 dots that follow the bass. Point k stands for the k-th part of the declared length.
 *
 *  Life: create() → analyzePeak() block by block → loudNum(), loudWave(), dotsNum(), dotsWave() at
 *  any time; points become final as the stream passes them. Loudness points have colour 5 until
 *  analyzeLoudColor() is asked for them, dots keep it. create() again starts over. Memory: the peak
 *  records of three bands and a few blocks, allocated in create(). Feeding allocates only to double
 *  the records of a track of more than three hours. */
class LoudViewMaker : public LVMakeBase {
public:
    LoudViewMaker() = default;
    ~LoudViewMaker() override { release(); }

    /** @param rate  samples per second, at least 75
     *  @param len  declared length in samples
     *  @return 1; 0, with nothing held, when the rate is out of range. Throws std::bad_alloc when
     *          memory is short; feeding is then ignored. */
    int create(int rate, int len);

    /** Back to the state after create(); does nothing before it. */
    void reset();

    /** Takes n mono samples of the track (full scale ±1.0) and their rectified bands: low is the
     *  band-pass of kLowBandHz and kLowBandQ, mid and high are the bands of the beat sensor.
     *
     *  The samples are cut into blocks of 1/75 s from the start of each call; only the track's last
     *  block should be shorter. Samples past the declared length go on filling the last points.
     *  @return 1 when all samples were used; 0 when nothing was: before create(), or when an array
     *          is null. */
    int analyzePeak(const float* in, float* low, float* mid, float* high, int n) override;

    /** Colours the loudness points from..to-1, as far as there are such points. */
    void analyzeLoudColor(int from, int to);

    /** Does nothing: the dots keep the colour they start with. */
    void analyzeDotsColor(int /*from*/, int /*to*/) {}

    /** Frees the buffers; safe to call twice. */
    void release();

    /** Final loudness points, 0..400. */
    int loudNum() const { return loudNum_; }
    const WavePoint* loudWave() const { return loudWave_.data(); }
    /** Final dots, 0..100. */
    int dotsNum() const { return dotsNum_; }
    const WavePoint* dotsWave() const { return dotsWave_.data(); }

private:
    void createBands(int rate, int len);
    void startOver();
    void clearWaves();
    void takeChunk(const float* in, const float* low, const float* mid, const float* high, int m);
    void fillAverageStrip(const float* in, int m);
    void finishLoudPoints(int ready);
    void finishDots(int ready);
    int loudPointsReady() const;
    int dotsReady() const;

    int blockLen_ = 0;  // 0: not created
    std::int64_t chunk_ = 0;
    LoudBand low_;
    LoudBand mid_;
    LoudBand high_;
    DotsBand lowDots_;
    DotsBand midDots_;
    AverageLevel averageLevel_;
    AverageStrip averageStrip_;
    std::array<WavePoint, kLoudPoints> loudWave_{};
    std::array<LoudPointSteps, kLoudPoints> loudSteps_{};
    std::array<WavePoint, kDots> dotsWave_{};
    int loudNum_ = 0;
    int dotsNum_ = 0;
};

}  // namespace beatatlas
