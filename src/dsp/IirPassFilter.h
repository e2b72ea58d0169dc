// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "dsp/IirFilter.h"

namespace beatatlas {

/** A short cascade of second-order sections, float in and float out: one band of a signal.
 *
 *  Life: one create…, then operate() on consecutive blocks of one signal; the sections carry the
 *  signal across the block borders, so any cutting into blocks gives the same bits. A further
 *  create… drops the earlier sections and starts from silence; there is no other reset. Never
 *  created, it passes its input through.
 *
 *  Frequencies and sample rates are in Hz, bandwidths in octaves; both corners of a two-corner band
 *  share q. Memory: the work buffers grow when a block is longer than every earlier one, and never
 *  shrink. */
class IirPassFilter {
public:
    IirPassFilter() = default;
    IirPassFilter(const IirPassFilter&) = delete;
    IirPassFilter& operator=(const IirPassFilter&) = delete;
    virtual ~IirPassFilter() = default;

    void createThroughFilter();
    /** Fourth order: two equal high-pass sections. */
    void createHiPathFilter(float freq, float sampleRate, float q);
    /** Fourth order: two equal low-pass sections. */
    void createLowPathFilter(float freq, float sampleRate, float q);
    /** Fourth order on both sides: high-pass and low-pass in turn, twice. */
    void createMidPathFilterB(float lowFreq, float highFreq, float sampleRate, float q);
    /** Second order on both sides: the gentle form of the same band. */
    void createMidPathFilterM(float lowFreq, float highFreq, float sampleRate, float q);
    void createBandPathFilterW(float freq, float sampleRate, float bandwidth);
    void createBandPathFilterQ(float freq, float sampleRate, float q);

    /** Filters one block of len samples; in and out may be the same array. len ≤ 0 does nothing.
     *  Throws std::bad_alloc, with everything as it was, when a longer block finds no memory. */
    void operate(const float* in, float* out, int len);

    std::int32_t stageCount() const { return stageCount_; }
    const IirFilter& stage(int i) const { return stages_[static_cast<std::size_t>(i)]; }

private:
    /** A fresh cascade whose section i is given its coefficients by design(section, i). */
    template <typename Design>
    void createStages(std::int32_t count, Design design);
    void growWorkBuffers(std::int32_t len);

    std::int32_t stageCount_ = 0;
    std::unique_ptr<IirFilter[]> stages_;
    // Samples of each work buffer.
    std::int32_t workCapacity_ = 0;
    std::unique_ptr<double[]> workA_;
    std::unique_ptr<double[]> workB_;
};

}  // namespace beatatlas
