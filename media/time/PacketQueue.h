// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>

#include "media/Container.h"
#include "media/ffmpeg.h"

namespace media {

/** A container's packets, with a look at those to come. Packets pass straight through as long as
 *  nobody looks ahead. */
class PacketQueue {
public:
    explicit PacketQueue(Container& container) : container_(container) {}

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Reads ahead what is at hand of so many packets, within a few megabytes. */
    const std::deque<PacketPointer>& lookAhead(std::size_t packets);

private:
    Container& container_;
    std::deque<PacketPointer> waiting_;
    std::size_t bytes_ = 0;
    bool hasEnded_ = false;
};

}  // namespace media
