// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "catalogue/Analysed.h"
#include "media/TrackSink.h"

struct XXH3_state_s;

namespace app {

/** What a track's sound is known by: XXH3-128 of its samples as they are analysed, left and right
 *  in turn, 32-bit floats as they lie in memory here, the low byte first. Tags, names and covers
 *  have no part in it; another decoder, or another encoding, gives another hash. */
class AudioHasher : public media::TrackSink {
public:
    /** @throws std::bad_alloc */
    AudioHasher();
    ~AudioHasher() override;
    AudioHasher(const AudioHasher&) = delete;
    AudioHasher& operator=(const AudioHasher&) = delete;

    void put(const media::StereoBlock& block) override;

    /** Of everything that was put. */
    catalogue::AudioHash hash() const;

private:
    struct StateFree {
        void operator()(XXH3_state_s* state) const;
    };

    std::unique_ptr<XXH3_state_s, StateFree> state_;
    std::vector<float> interleaved_;
};

}  // namespace app
