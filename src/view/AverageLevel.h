// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace beatatlas {

/** Averages the rectified signal over nine chunks, or up to a chunk with a low-band peak where one
 *  comes sooner. */
class AverageLevel {
public:
    struct Average {
        /** In 16-bit scale. */
        float level;

        /** Belongs to the same point as the average before, which a peak had cut short. */
        bool merges;
    };

    void create(int blockLen);
    void reset();

    /** Takes one chunk of m samples (full scale ±1.0); an average comes with every ninth chunk and
     *  every peak. */
    std::optional<Average> put(const float* samples, int m, bool peakInChunk);

private:
    int blockLen_ = 0;
    float sum_ = 0.0F;
    int chunks_ = 0;
    bool mergePending_ = false;
};

}  // namespace beatatlas
