// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/TrackSource.h"
#include "media/StereoBlock.h"

namespace media {

/** Counts the samples of a track that its analysis cannot take as they are. */
class OverloadMeter {
public:
    /** Samples of one channel. */
    void put(const std::vector<float>& samples);

    void put(const StereoBlock& block);

    /** A mono track has the same samples on both sides: they count once. */
    base::Overload overload() const;

private:
    base::Overload left_;
    base::Overload right_;
    bool isMono_ = true;
};

}  // namespace media
