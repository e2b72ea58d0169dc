// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "track/evidence/Decimator.h"
#include "track/evidence/SpectrumStream.h"

namespace beatatlas::track::inner {

/** Power spectra of a track at an eighth of its rate, evenly spaced, in which pitches are found.
 *  The first frame is centred on the first sample.
 *
 *  Life: construct, rounding to nearest → put() per block → finish(). */
class DecimatedPowers {
public:
    /** @param rate    44100 or 48000 Hz
     *  @param step    hop between frames in decimated samples
     *  @param length  frame length in decimated samples, a power of two of at least 64 */
    DecimatedPowers(int rate, double step, int length)
        : rate_(static_cast<double>(rate) / Decimator::kFactor), step_(step), bins_(length / 2),
          even_(static_cast<std::size_t>(bins_)), odd_(even_), stream_(step, length) {}

    /** The rate after decimation, Hz. */
    double rate() const { return rate_; }

    /** Takes the mean of both channels, full scale ±1.0, and calls take(const float* powers) for
     *  each complete frame, with half as many bins as a frame has samples. */
    template <class Take>
    void put(const float* mono, std::int64_t samples, const Take& take) {
        add(decimator_.put(mono, samples), take);
    }

    /** The same for the frames that were still waiting to fill a batch. Call once.
     *  @return the number of whole hops in the track; take() may have been called for a few frames
     *          more */
    template <class Take>
    std::int64_t finish(const Take& take) {
        add(decimator_.finish(), take);
        const auto frames = static_cast<std::int64_t>(static_cast<double>(decimated_) / step_);
        stream_.finish(frames, batchTaker(take));
        return frames;
    }

private:
    template <class Take>
    void add(const std::vector<float>& samples, const Take& take) {
        const auto count = static_cast<std::int64_t>(samples.size());
        decimated_ += count;
        stream_.put(samples.data(), count, batchTaker(take));
    }

    template <class Take>
    auto batchTaker(const Take& take) {
        return [this, &take](const FrameSpectra& spectra, int frames) {
            for (int frame = 0; frame < frames; frame += 2) {
                spectra.powers(frame / 2, bins_, even_.data(), odd_.data());
                take(static_cast<const float*>(even_.data()));
                if (frame + 1 < frames) take(static_cast<const float*>(odd_.data()));
            }
        };
    }

    double rate_;
    double step_;
    int bins_;
    std::vector<float> even_;  // powers of the first of two frames
    std::vector<float> odd_;
    Decimator decimator_;
    SpectrumStream stream_;
    std::int64_t decimated_ = 0;
};

}  // namespace beatatlas::track::inner
