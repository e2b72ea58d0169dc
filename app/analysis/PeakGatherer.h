// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "media/StereoBlock.h"
#include "output/formats/Peaks.h"

namespace app {

/** Gathers the peaks of a track while it is decoded, as it is analysed: in stereo at the rate of
 *  the session, clipped at full scale. What is no number counts as silence. */
class PeakGatherer {
public:
    /** @param framesPerPixel  at least 1 */
    explicit PeakGatherer(int framesPerPixel) { peaks_.framesPerPixel = framesPerPixel; }

    /** What is kept in memory. */
    double bytesPerFrame() const { return 8.0 / peaks_.framesPerPixel; }

    void put(const media::StereoBlock& block);

    /** Once the track has ended. @param rate  of the session, Hz */
    output::Peaks finish(int rate);

private:
    /** Of one channel since the last pixel. */
    struct Extremes {
        float least = 0.0F;
        float most = 0.0F;
    };

    void closePixel();

    output::Peaks peaks_;
    std::array<Extremes, 2> extremes_;
    int gathered_ = 0;  ///< frames of the pixel at hand
};

}  // namespace app
