// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "media/StereoBlock.h"

namespace app {

/** Where a click sounds. */
struct Click {
    std::int64_t frame = 0;  ///< its first
    bool isDownbeat = false;
};

/** What becomes of the music. */
enum class ClickPlace {
    over,   ///< clicks on both sides, over the music
    alone,  ///< no music
    apart,  ///< the music on the left, mono, the clicks on the right
};

/** Puts clicks into music, a stretch at a time.
 *
 *  A click begins at its full height with the beat's own frame: a burst of 1,000 Hz that dies away
 *  within 50 ms. That of a downbeat has 1,500 Hz and is 6 dB louder.
 *
 *  Nothing is clipped or squeezed: where music and clicks together could come closer to full scale
 *  than 1 dB, both are lowered by one factor from the first frame to the last. */
class ClickMixer {
public:
    /** @param clicks     in order of time, at the rate
     *  @param rate       Hz, of the music
     *  @param musicPeak  its loudest sample, see heardSample(); full scale is 1
     *  @param levelDb    how far a downbeat's click stands above the loudest sample */
    ClickMixer(std::vector<Click> clicks, int rate, double musicPeak, double levelDb,
               ClickPlace place);

    /** The next stretch of the music, which becomes that of the result. */
    void mix(media::StereoBlock& block);

    /** What the music is multiplied by, up to 1. */
    double musicGain() const { return gain_; }

private:
    float clickAt(std::int64_t frame);

    std::vector<Click> clicks_;
    std::vector<float> downbeat_;  ///< a click from its first frame on, as loud as it comes out
    std::vector<float> beat_;
    ClickPlace place_;
    float gain_;
    std::size_t next_ = 0;  ///< of the clicks that have not begun
    std::int64_t position_ = 0;
};

/** A sample as it is put into the result: what is no number is silence, and what exceeds twice full
 *  scale, which no decoder makes of music, is clipped there. */
float heardSample(float sample);

/** The loudest sample of a stretch as heardSample() has it, or the one given if that is louder. */
double louderPeak(double peak, const media::StereoBlock& block);

}  // namespace app
