// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "dsp/HighPathFilter2D.h"
#include "dsp/LowPathFilter2D.h"
#include "envelope/WindowSum.h"
#include "peakss/BeatInfo.h"

namespace beatatlas {

/** The last refinement of tempo and beat grid, for tracks of constant tempo.
 *
 *  Keeps a rectified, band-limited level at a quarter of the audio rate, of at most the first 900
 *  s. Tempos around the given one, 0.002 BPM apart, each lay a trial grid; the grid whose beats'
 *  ±50 ms neighbourhoods pile up the sharpest level peak wins, and the whole list then moves so
 *  that the peak falls on the beats.
 *
 *  Life: create() → putSample() per block → analyze() once. reset() only clears the counters: the
 *  level and the trial grids are kept, so starting over takes another create(). Memory: two bytes
 *  per four frames, at most 21.6 MB at 48 kHz, reserved in create() and touched as the track
 *  arrives; none allocated in putSample(). */
class UnitBeatAdjust {
public:
    UnitBeatAdjust() = default;
    UnitBeatAdjust(const UnitBeatAdjust&) = delete;
    UnitBeatAdjust& operator=(const UnitBeatAdjust&) = delete;
    virtual ~UnitBeatAdjust() { release(); }

    /** @param sampleRate  Hz
     *  @param length      frames of the track
     *  @return true */
    bool create(int sampleRate, int length);

    void reset();

    /** Takes one block of interleaved 16-bit stereo; null and frames ≤ 0 do nothing.
     *
     *  Every fourth frame of each block is used, from its first on: blocks of a multiple of four
     *  frames, the last excepted, give an even level signal. */
    void putSample(const std::int16_t* samples, int frames);

    /** Refines both.
     *
     *  @param bpm    tempo of the beats; nothing happens unless it is above 0. Moves by at most
     *                about 0.05, within 70..180.
     *  @param beats  the grid; takes the length and tempo of the best trial, then its offset */
    void analyze(float& bpm, peakss::BeatList& beats);

    /** Safe to call twice. */
    void release();

    /** Levels at a quarter of the audio rate, 0..32767. */
    const std::vector<std::int16_t>& level() const { return level_; }
    int trialCount() const { return trialCount_; }
    /** Beat positions of each tempo trial, in level samples. */
    const std::vector<std::vector<int>>& grids() const { return grids_; }

private:
    struct BestTrial {
        double bpm = 0.0;
        double score = 0.0;
        int index = 0;
    };

    std::int64_t mostLevels() const;
    std::int64_t framesToTake(int frames) const;
    void appendLevels(const std::int16_t* samples, std::int64_t frames);

    int beatsWithinLevel(float bpm, const peakss::BeatList& beats) const;
    void bpmAdjust(float& bpm, peakss::BeatList& beats, int limit);
    void tryCoarse(double bpm, int startPos, int limit, BestTrial& best);
    void tryFine(float bpm, int startPos, int limit, BestTrial& best);
    void getPeakBpm(double start, int count, int startPos, int limit, BestTrial& best);
    void createBeatData(double bpm, int startPos);
    double manageWave(int limit, int gridIndex);
    void sumPeakData(std::int64_t from, std::int64_t to);
    void reflectBeatData(const BestTrial& best, float& bpm, peakss::BeatList& beats);
    void resizeBeats(peakss::BeatList& beats, int count);
    void beatPositionAdjust(peakss::BeatList& beats);
    void offsetBeatPosition(int halfWindow, int peakIndex, peakss::BeatList& beats);

    int length_ = 0;       // frames
    int quarterRate_ = 0;  // Hz, the rate of the level
    int taken_ = 0;        // level samples since create or reset
    int trialCount_ = 0;   // index of the next trial grid
    int capacity_ = 0;     // most level samples kept
    int beatCount_ = 0;    // beats of the working list
    int halfWindow_ = 0;   // 50 ms in level samples
    WindowSum windowSum_;  // two half windows wide
    std::vector<std::vector<int>> grids_;
    std::vector<std::int16_t> level_;
    std::unique_ptr<HighPathFilter2D> highPass_;
    std::unique_ptr<LowPathFilter2D> lowPass_;
};

}  // namespace beatatlas
