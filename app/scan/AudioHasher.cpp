// SPDX-License-Identifier: MIT
#include "scan/AudioHasher.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>
#include <new>
#include <vector>

#include <xxhash.h>

namespace app {

static_assert(std::endian::native == std::endian::little,
              "the hash is defined by the low byte first");

namespace {

void add(XXH3_state_s& state, const std::vector<float>& samples) {
    XXH3_128bits_update(&state, samples.data(), samples.size() * sizeof(float));
}

}  // namespace

AudioHasher::State AudioHasher::makeState() {
    State state(XXH3_createState());
    if (!state) throw std::bad_alloc();
    XXH3_128bits_reset(state.get());
    return state;
}

void AudioHasher::StateFree::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

void AudioHasher::put(const media::StereoBlock& block) {
    add(*left_, block.left);
    add(*right_, block.right);
}

catalogue::AudioHash AudioHasher::hash() const {
    std::array<XXH128_canonical_t, 2> sides;
    XXH128_canonicalFromHash(&sides[0], XXH3_128bits_digest(left_.get()));
    XXH128_canonicalFromHash(&sides[1], XXH3_128bits_digest(right_.get()));
    XXH128_canonical_t both;
    XXH128_canonicalFromHash(&both, XXH3_128bits(sides.data(), sizeof sides));
    catalogue::AudioHash hash;
    std::copy(std::begin(both.digest), std::end(both.digest), hash.begin());
    return hash;
}

}  // namespace app
