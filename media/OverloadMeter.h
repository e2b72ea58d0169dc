// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "base/TrackSource.h"
#include "media/StereoBlock.h"

namespace media {

/** Counts the samples of a track that its analysis cannot take as they are. */
class OverloadMeter {
public:
    void put(const std::vector<float>& samples);
    void put(const StereoBlock& block);

    const base::Overload& overload() const { return overload_; }

private:
    void look(float sample);

    base::Overload overload_;
};

}  // namespace media
