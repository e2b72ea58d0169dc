// SPDX-License-Identifier: MIT
#include "scan/AudioHasher.h"

#include <algorithm>
#include <bit>
#include <new>

#include <xxhash.h>

namespace app {

static_assert(std::endian::native == std::endian::little,
              "the hash is defined by the low byte first");

AudioHasher::AudioHasher() : state_(XXH3_createState()) {
    if (!state_) throw std::bad_alloc();
    XXH3_128bits_reset(state_.get());
}

AudioHasher::~AudioHasher() = default;

void AudioHasher::StateFree::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

void AudioHasher::put(const media::StereoBlock& block) {
    const std::size_t frames = block.frames();
    interleaved_.resize(2 * frames);
    for (std::size_t i = 0; i < frames; ++i) {
        interleaved_[2 * i] = block.left[i];
        interleaved_[2 * i + 1] = block.right[i];
    }
    XXH3_128bits_update(state_.get(), interleaved_.data(), interleaved_.size() * sizeof(float));
}

catalogue::AudioHash AudioHasher::hash() const {
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, XXH3_128bits_digest(state_.get()));
    catalogue::AudioHash hash;
    std::copy(std::begin(bytes.digest), std::end(bytes.digest), hash.begin());
    return hash;
}

}  // namespace app
