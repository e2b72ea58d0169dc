// SPDX-License-Identifier: MIT
#include "media/FeedSink.h"

#include <utility>

#include "base/Interrupt.h"

namespace media {

FeedSink::FeedSink(std::function<void(const StereoBlock&)> feed,
                   std::function<void(std::int64_t)> counted)
    : feed_(std::move(feed)), counted_(std::move(counted)) {}

void FeedSink::put(const StereoBlock& block) {
    base::Interrupt::check();
    const auto count = static_cast<std::int64_t>(block.frames());
    feed_(block);
    frames_ += count;
    counted_(frames_);
}

}  // namespace media
