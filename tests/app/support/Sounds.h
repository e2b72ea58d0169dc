// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "audio/TrackSink.h"

namespace app::test {

/** A sound of any number of channels, full scale ±1.0, all channels of one length. */
struct Sound {
    int rate;
    std::vector<std::vector<float>> channels;

    std::size_t frames() const { return channels.front().size(); }
};

/** Silence with a soft click of 21 frames around each of the places, alike on all channels. A click survives lossy
 *  coding with its middle where it was. */
Sound clicks(int rate, int channels, double seconds, const std::vector<double>& places);

/** One tone, alike on all channels. */
Sound tone(int rate, int channels, double seconds, double hertz, double amplitude);

/** Gathers a decoded track. */
class Recorder : public TrackSink {
public:
    void put(StereoBlock& block) override;

    std::vector<float> left;
    std::vector<float> right;
};

/** The middle of the loudest click within 0.05 s of the place, as a frame; -1 when it is silent there. */
double clickNear(const std::vector<float>& channel, int rate, double seconds);

}  // namespace app::test
