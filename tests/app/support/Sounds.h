// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "media/TrackSink.h"

namespace test {

/** A sound of any number of channels, full scale ±1.0, all channels of one length. */
struct Sound {
    int rate;
    std::vector<std::vector<float>> channels;

    std::size_t frames() const { return channels.front().size(); }
};

/** Silence with a soft click of 21 frames around each of the places, alike on all channels. A click
 *  survives lossy coding with its middle where it was. */
Sound clicks(int rate, int channels, double seconds, const std::vector<double>& places);

/** One tone, alike on all channels. */
Sound tone(int rate, int channels, double seconds, double hertz, double amplitude);

/** Adds one mono sound to every channel of another, from its beginning. */
void mixInto(Sound& sound, const Sound& added);

/** Triads on the degrees I, IV, V, I of a key, a second each, over and over; sines on notes around
 *  A4.
 *  @param key  as the library numbers it: 0 to 11 major from A upward, 12 to 23 minor */
Sound cadence(int rate, int channels, double seconds, int key, double referenceHz);

/** A bass drum every half second: 60 Hz, dying away within 0.1 s. */
Sound kicks(int rate, double seconds, double amplitude);

/** Level of a tone within a channel from a frame on, as the amplitude of a sine. */
double levelAt(const std::vector<float>& channel, int rate, double hertz, std::size_t from,
               std::size_t count);

/** Gathers a decoded track. */
class Recorder : public media::TrackSink {
public:
    void put(const media::StereoBlock& block) override;

    std::vector<float> left;
    std::vector<float> right;
};

/** The middle of the loudest click within 0.05 s of the place, as a frame; -1 when it is silent
 *  there. */
double clickNear(const std::vector<float>& channel, int rate, double seconds);

}  // namespace test
