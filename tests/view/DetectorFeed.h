// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "view/DetectorTiming.h"
#include "view/PeakRecords.h"

namespace beatatlas::test {

/** A small rate for counting by hand: blocks of 10, peaks at least 240 apart, hold up to a count of
 *  1285, and a decay every 8 samples (750 / 44100 × 512 = 8.7). */
inline constexpr int kSmallRate = 750;
inline constexpr int kSmallBlock = 10;

/** One chunk for a detector, its loudest sample looked up. */
template <typename Detector>
void putChunk(Detector& detector, PeakRecords& records, const float* samples, int m) {
    float loudest = 0.0F;
    for (int i = 0; i < m; ++i)
        if (samples[i] > loudest) loudest = samples[i];
    detector.put(records, samples, m, loudest);
}

/** A detector with its records, fed chunk by chunk. */
template <typename Detector>
class DetectorFeed {
public:
    explicit DetectorFeed(int len, float ratio = 0.75F) {
        records.reset();
        detector.create(DetectorTiming(kSmallRate, len), ratio);
    }

    /** One chunk as it is. */
    void chunk(const std::vector<float>& samples) {
        putChunk(detector, records, samples.data(), static_cast<int>(samples.size()));
    }

    /** Chunks of the given length, the last one as short as it comes. */
    void feed(const std::vector<float>& samples, std::size_t chunkLen = kSmallBlock) {
        for (std::size_t at = 0; at < samples.size(); at += chunkLen) {
            const auto from = samples.begin() + static_cast<std::ptrdiff_t>(at);
            const auto size = std::min(chunkLen, samples.size() - at);
            chunk({from, from + static_cast<std::ptrdiff_t>(size)});
        }
    }

    /** The same level for so many samples. */
    void level(float value, std::size_t samples, std::size_t chunkLen = kSmallBlock) {
        feed(std::vector<float>(samples, value), chunkLen);
    }

    PeakRecords records;
    Detector detector;
};

}  // namespace beatatlas::test
