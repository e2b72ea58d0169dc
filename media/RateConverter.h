// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "media/StereoBlock.h"

struct soxr;

namespace media {

/** Rates that can be converted. Beyond these limits a file's header is certainly wrong, and one
 *  block of input could grow to gigabytes. */
constexpr int kLowestRate = 1000;
constexpr int kHighestRate = 1'536'000;

/** The session's rate for a track: its own when that is 44,100 or 48,000; 44,100 for its quarter,
 *  half, double and quadruple; 48,000 for all others. */
int sessionRateFor(int trackRate);

constexpr double kLowestSessionRate = 44100.0;

/** @throws TrackError when no track of that rate can be converted */
void requireConvertible(int rate);

/** How many frames a RateConverter makes of that many in total. */
std::int64_t convertedFrames(std::int64_t frames, int fromRate, int toRate);

/** Converts stereo audio from one sample rate to another with libsoxr's high-quality recipe. The
 *  converter's own delay is compensated: sounds keep their times. */
class RateConverter {
public:
    /** @throws TrackError when the two rates are too far apart to convert */
    RateConverter(int fromRate, int toRate);
    ~RateConverter();
    RateConverter(const RateConverter&) = delete;
    RateConverter& operator=(const RateConverter&) = delete;

    /** @return what is ready so far, valid until the next call */
    StereoBlock& convert(const StereoBlock& input);

    /** Call once, after the last convert(). @return the rest */
    StereoBlock& finish();

private:
    struct StateDelete {
        void operator()(soxr* state) const;
    };

    /** One call of the converter. @param input  null ends the input
     *  @return how many input frames it took */
    std::size_t step(const StereoBlock* input, std::size_t taken);

    /** Frames that the input can yield at once, and some more that the converter still holds. */
    std::size_t roomFor(std::size_t inputFrames) const;

    double ratio_;
    std::unique_ptr<soxr, StateDelete> state_;
    StereoBlock output_;
    bool outputWasFull_ = false;
};

}  // namespace media
