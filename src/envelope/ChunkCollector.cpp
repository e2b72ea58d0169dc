// SPDX-License-Identifier: MIT
#include "envelope/ChunkCollector.h"

#include <algorithm>

namespace beatatlas {

std::size_t ChunkCollector::valueCount(int lengthFrames) {
    if (lengthFrames <= 0) return 0;
    return (static_cast<std::size_t>(lengthFrames) + kChunkFrames - 1) / kChunkFrames;
}

void ChunkCollector::create(int lengthFrames) {
    length_ = lengthFrames;
    rewind();
}

void ChunkCollector::rewind() {
    consumed_ = 0;
    fill_ = 0;
}

int ChunkCollector::take(const std::int16_t* samples, int frames) {
    const int count = std::min(frames, kChunkFrames - fill_);
    double* mono = chunkBuffer_.data() + fill_;
    for (int j = 0; j < count; ++j) mono[j] = monoOfFrame(samples + 2 * j);
    consumed_ += count;
    fill_ += count;
    return count;
}

std::size_t ChunkCollector::chunkIndex() const {
    return static_cast<std::size_t>(consumed_ - fill_) / kChunkFrames;
}

}  // namespace beatatlas
