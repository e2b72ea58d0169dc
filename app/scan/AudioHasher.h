// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "catalogue/Analysed.h"
#include "media/TrackSink.h"

struct XXH3_state_s;

namespace app {

/** What a track's sound is known by: XXH3-128 of two hashes of the same kind, of its left and of its
 *  right samples as they are analysed, 32-bit floats, the low byte first. Tags, names and covers
 *  have no part in it; another decoder, or another encoding, gives another hash. */
class AudioHasher : public media::TrackSink {
public:
    void put(const media::StereoBlock& block) override;

    /** Of everything that was put. */
    catalogue::AudioHash hash() const;

private:
    struct StateFree {
        void operator()(XXH3_state_s* state) const;
    };

    using State = std::unique_ptr<XXH3_state_s, StateFree>;
    static State makeState();

    State left_ = makeState();
    State right_ = makeState();
};

}  // namespace app
