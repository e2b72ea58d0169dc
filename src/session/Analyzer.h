// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitBeatAdjust.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "key/KeyRankMaker.h"
#include "peakss/BeatInfo.h"
#include "peakss/sensing/BeatListMaker.h"
#include "session/PreChecker.h"
#include "session/TrackFilters.h"
#include "view/LoudViewMaker.h"
#include "view/ZoomViewMaker.h"

namespace beatatlas {

/** One analysis session: takes a track in calls of any length, cuts it into blocks of a 75th of a
 *  second, hands each block to the analysers that are switched on, and closes the analysis when the
 *  declared length has come.
 *
 *  Life: one create… → with key detection, setSamplePre until the declared length → setSample until
 *  the declared length → getters. A call out of this order is ignored. There is no way back but
 *  destruction. Used by one thread at a time; create and feeding leave the thread rounding toward
 *  zero. */
class Analyzer {
public:
    Analyzer();
    virtual ~Analyzer();
    Analyzer(const Analyzer&) = delete;
    Analyzer& operator=(const Analyzer&) = delete;

    /** Makes a session of constant or varied tempo. Refuses, without any change, a second create, a
     *  rate other than 44100 and 48000, totalSamples ≤ 0 and sectionBeats < 0.
     *  @param totalSamples  declared length in frames
     *  @param sectionBeats  0: no beat analysis; with varied, the beats of a grid phrase (4 × a
     *                       power of two) */
    void create(int rate, int totalSamples, int sectionBeats, bool varied, bool loudOn, bool zoomOn,
                bool keyOn);

    /** Makes a simple session: beats are sensed in the frames startSample … rangeSamples − 1 only.
     *  An end outside the track means its first minute; a start not before the end means 0. */
    void createSimple(int rate, int totalSamples, int startSample, int rangeSamples, bool loudOn,
                      bool zoomOn, bool keyOn);

    /** Whether the closing analysis keeps its progress lines off the standard output; it prints
     *  them by default. Holds for the session to come, and changes no result. */
    void setQuiet(bool isQuiet) { isQuiet_ = isQuiet; }

    /** Feeds the pre-check pass; samples from −32768 to 32767. */
    void setSamplePre(const float* left, const float* right, int count);

    /** Feeds the analysis pass; samples from −32768 to 32767. The call that completes the track
     *  runs analyze; what it brings beyond the declared length is heard up to the end of the
     *  block. */
    void setSample(const float* left, const float* right, int count);

    /** Closes the analysis, once. */
    void analyze();

    /** Where the exception shield of the plain exports ends. A session needs no undoing: what an
     *  exception leaves is still safe to feed, ask and destroy. */
    void abort() {}

    bool isAnalyzed() const { return analyzed_; }
    /** Hundredths of a BPM, rounded half up. */
    int getBpm() const;
    const peakss::BeatList& getBeatList() const { return beatList_; }

    int getLoudNum() const { return loudViewMaker_.loudNum(); }
    int getDotsNum() const { return loudViewMaker_.dotsNum(); }
    int getZoomNum() const { return zoomViewMaker_.count(); }
    /** Colours the points finalised since the last call first. */
    const WavePoint* getLoudWave();
    const WavePoint* getDotsWave();
    const ZoomPoint* getZoomWave();

    int getMainKey() const { return keyRankMaker_.getMainKey(); }
    int getKeyPoint(double* out) const { return keyRankMaker_.getKeyPoint(out); }
    int getKeyRank(int* out) const { return keyRankMaker_.getKeyRank(out); }
    int getNoteEncount(int* out) const { return keyRankMaker_.getNoteEncount(out); }
    int getNoteEncountVal(double* out) const { return keyRankMaker_.getNoteEncountVal(out); }

private:
    void reset();
    bool refuses(int rate, int totalSamples) const;
    void prepare(int rate, int totalSamples, bool loudOn, bool zoomOn, bool keyOn);
    void limitSensingRange(int startSample, int rangeSamples);
    void createAnalysers();
    int fillBlock(const float* left, const float* right, int count);
    void dispatchBlock();
    void dispatchFiltered();
    void dispatchBeats();
    float proposeGrid();

    bool created_ = false;
    bool isQuiet_ = false;
    bool simple_ = false;
    bool beatOn_ = false;
    bool loudOn_ = false;
    bool zoomOn_ = false;
    bool keyOn_ = false;
    bool preChecked_ = false;
    bool analyzed_ = false;
    int rate_ = 0;
    int blockLen_ = 0;  // frames per block
    int totalSamples_ = 0;
    int startSample_ = 0;   // frames of the beat-sensing range
    int rangeSamples_ = 0;  // its end, exclusive
    int sectionBeats_ = 32;
    bool varied_ = false;
    std::unique_ptr<float[]> monoBlock_;           // blockLen_, full scale ±1.0
    std::unique_ptr<std::int16_t[]> stereoBlock_;  // 2 × blockLen_, left first
    std::int64_t fedSamples_ =
        0;  // wider than a length: the completing call may bring more than declared
    int blockFill_ = 0;
    float bpm_ = 0.0F;
    int loudColored_ = 0;
    int dotsColored_ = 0;
    int zoomRead_ = 0;

    PreChecker preChecker_;
    TrackFilters trackFilters_;
    peakss::BeatList beatList_;
    peakss::BeatListMaker beatListMaker_;
    SimpleEnvelopeMaker simpleEnvelopeMaker_;
    UnitEnvelopeMaker unitEnvelopeMaker_;
    UnitBeatAdjust unitBeatAdjust_;
    LoudViewMaker loudViewMaker_;
    ZoomViewMaker zoomViewMaker_;
    KeyRankMaker keyRankMaker_;
};

}  // namespace beatatlas
