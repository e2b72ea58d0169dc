// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>

#include "media/TrackSink.h"

namespace media {

/** Passes a track on block by block, counts its frames and checks for requests to stop. */
class FeedSink : public TrackSink {
public:
    /** @param feed     takes each block
     *  @param counted  is called after each block with the number of frames so far */
    FeedSink(std::function<void(const StereoBlock&)> feed,
             std::function<void(std::int64_t)> counted);

    /** @throws Interrupted */
    void put(const StereoBlock& block) override;

    std::int64_t frames() const { return frames_; }

private:
    std::function<void(const StereoBlock&)> feed_;
    std::function<void(std::int64_t)> counted_;
    std::int64_t frames_ = 0;
};

}  // namespace media
