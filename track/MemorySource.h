// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "beatatlas/track.h"

namespace beatatlas::track::inner {

/** A track in memory as a source. Must outlive what source() returns. */
class MemorySource {
public:
    MemorySource(const float* left, const float* right, std::int64_t frames)
        : left_(left), right_(right), frames_(frames) {}

    BA_TrackSource source();

private:
    static void* open(void* host);
    static std::int64_t read(void* host, void* pass, float* left, float* right,
                             std::int64_t frames);
    static void close(void* host, void* pass);

    const float* left_;
    const float* right_;
    std::int64_t frames_;
};

}  // namespace beatatlas::track::inner
