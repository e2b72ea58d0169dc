// SPDX-License-Identifier: MIT
#include "track/MemorySource.h"

#include <algorithm>

namespace beatatlas::track::inner {

BA_TrackSource MemorySource::source() {
    return {sizeof(BA_TrackSource), this, open, read, close, 0, 0};
}

// A pass is represented by its position, in frames.
void* MemorySource::open(void* /*host*/) {
    return new std::int64_t(0);
}

std::int64_t MemorySource::read(void* host, void* pass, float* left, float* right,
                                std::int64_t frames) {
    const auto& track = *static_cast<const MemorySource*>(host);
    auto& at = *static_cast<std::int64_t*>(pass);
    const std::int64_t count = std::min(frames, track.frames_ - at);
    std::copy_n(track.left_ + at, count, left);
    std::copy_n(track.right_ + at, count, right);
    at += count;
    return count;
}

void MemorySource::close(void* /*host*/, void* pass) {
    delete static_cast<std::int64_t*>(pass);
}

}  // namespace beatatlas::track::inner
