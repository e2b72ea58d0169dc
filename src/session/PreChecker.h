// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** Level statistics of a whole track, taken before its analysis.
 *
 *  Near-silence at the start and between sounding frames belongs to the music; only what follows
 *  the last sounding frame is the silent tail, and stays in the quiet figures. Levels are in 16-bit
 *  sample scale. */
class PreChecker {
public:
    PreChecker() = default;
    virtual ~PreChecker() = default;
    PreChecker(const PreChecker&) = delete;
    PreChecker& operator=(const PreChecker&) = delete;

    /** Takes count frames (samples from −32768 to 32767), count > 0. */
    void putSample(const float* left, const float* right, int count);

    /** Frames counted as sounding, capped at the largest int. */
    int loudCount() const { return capped(loudCount_); }
    /** Σ |left| + |right| over the sounding frames. */
    double loudSum() const { return loudSum_; }
    /** Largest magnitude of one channel among them. */
    double loudMax() const { return loudMax_; }
    /** Frames of the silent tail. */
    int quietCount() const { return capped(quietCount_); }
    double quietSum() const { return quietSum_; }
    double quietMax() const { return quietMax_; }

private:
    static int capped(std::int64_t frames);
    void putBlock(const float* left, const float* right, int count);
    void foldQuietRun();

    std::int64_t loudCount_ = 0;
    double loudSum_ = 0.0;
    double loudMax_ = 0.0;
    std::int64_t quietCount_ = 0;
    double quietSum_ = 0.0;
    double quietMax_ = 0.0;
};

}  // namespace beatatlas
