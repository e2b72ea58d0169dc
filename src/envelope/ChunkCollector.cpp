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

int ChunkCollector::advance(int frames) {
    const int count = std::min(frames, kChunkFrames - fill_);
    consumed_ += count;
    fill_ += count;
    return count;
}

std::size_t ChunkCollector::chunkIndex() const {
    return static_cast<std::size_t>(consumed_ - fill_) / kChunkFrames;
}

}  // namespace beatatlas
