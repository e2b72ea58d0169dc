// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "key/BandSpectrogram.h"
#include "key/DecimationBuffer.h"
#include "key/KeyBandFilter.h"
#include "key/KeyRanking.h"
#include "key/KeySpectrum.h"
#include "key/NoteEncounters.h"
#include "key/TransientSuppressor.h"

namespace beatatlas {

/** Ranks the 24 keys of a whole track while it is fed.
 *
 *  Life: create → setPreCheckData with the levels of the whole track → putSample until the declared
 *  length has arrived; that call runs the closing analysis → getters. Getters before it give the
 *  keys in the order of their numbers and zeros. Create again starts over. Works in
 *  round-toward-zero, which the caller sets.
 *
 *  Memory: a row of 91 doubles per 0.3 s of the declared length, allocated in create; nothing while
 *  feeding but the transform's tables, once. */
class KeyRankMaker {
public:
    KeyRankMaker() = default;
    ~KeyRankMaker() { release(); }
    KeyRankMaker(const KeyRankMaker&) = delete;
    KeyRankMaker& operator=(const KeyRankMaker&) = delete;

    /** @param rate  frames per second
     *  @param len   declared length in frames
     *  @return 1. Throws std::bad_alloc. */
    int create(int rate, int len);

    /** Forgets what was fed and the levels; the track starts over. Call after create. */
    void reset();

    /** Frees the buffers; the results stay. */
    void release();

    /** Takes the levels of the whole track, before the first putSample. They are in 16-bit sample
     *  scale.
     *  @param count  sounding frames; the closing analysis spans these instead of the declared
     *                length
     *  @param sum    Σ |left| + |right| over them
     *  @param peak   largest magnitude of one channel among them
     *  The figures of the silent tail that follow are not used.
     *  @return analysis frames to come */
    int setPreCheckData(int count, double sum, double peak, int quietCount, double quietSum,
                        double quietPeak);

    /** Feeds n interleaved stereo frames; the call that brings the declared length completes the
     *  analysis, all its frames included. Ignored without create, for n ≤ 0, for null, and after
     *  the analysis. */
    void putSample(const std::int16_t* frames, int n);

    /** Whether frames were taken as silent because their spectrum found no memory: the results are
     *  those of another track then. */
    bool hasMissedFrames() const { return spectrum_.hasMissedFrames(); }

    /** Frames that wait for the band filter. putSample() filters all of them in the end; a caller
     *  that runs other filters may filter some of them beside those. takeFiltered() then says how
     *  many more frames have been taken, and passes on the samples that resulted. */
    struct BandBlock {
        KeyBandFilter* filter;
        const std::int16_t* frames;
        int n;
    };
    /** As many of them as may be filtered now, `most` frames at the most. */
    BandBlock waiting(int most);
    void takeFiltered(int frames, const std::int16_t* samples, int n);

    /** 0 to 11: major keys from A upward; 12 to 23: minor keys from A minor. */
    int getMainKey() const { return ranking_.keys()[0]; }

    /** @name Each fills out, unless it is null, and returns the number of entries.
     *  @{ */
    /** 24 key numbers, best first. */
    int getKeyRank(int* out) const;
    /** 24 scores in the same order. */
    int getKeyPoint(double* out) const;
    /** 12 counts of strongest bands, from A. */
    int getNoteEncount(int* out) const;
    /** 12 shares of their energy, from A. */
    int getNoteEncountVal(double* out) const;
    /** @} */

    /** The transform of the analysis, double precision; see CachedFft::fft. */
    int fft(int n, double* re, double* im) { return spectrum_.fft(n, re, im); }

private:
    bool isFull() const { return fill_ == capacity_; }
    int maximumFramesOf(int frames) const;
    int takeFrames(const std::int16_t* frames, int n);
    void analyzeAC(bool last);
    void filterWaiting();
    void addFiltered(int n);
    void analyzeFFT();
    void analyzeKEY();

    int length_ = 0;  // declared, frames
    int rate_ = 0;
    double analysisRate_ = 0.0;  // decimated samples per second
    int maxFrames_ = 0;          // analysis frames, as are the next
    int frames_ = 0;
    bool complete_ = false;

    std::unique_ptr<std::int16_t[]> input_;  // stereo frames not yet ready for the band filter
    std::unique_ptr<std::int16_t[]>
        waiting_;           // those that are, before them those that have been through
    int capacity_ = 0;      // of each, frames
    int fill_ = 0;          // frames in input_
    int waitingFirst_ = 0;  // in waiting_
    int waitingEnd_ = 0;
    std::int64_t received_ = 0;  // frames ever

    TransientSuppressor suppressor_;
    KeyBandFilter filter_;
    DecimationBuffer decimation_;
    KeySpectrum spectrum_;
    BandSpectrogram spectrogram_;
    std::vector<double> bandTotals_;
    NoteEncounters encounters_;
    KeyRanking ranking_;
};

}  // namespace beatatlas
