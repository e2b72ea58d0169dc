// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>

#include "media/Container.h"
#include "media/ffmpeg.h"

namespace media {

/** A container's packets, with the possibility to look ahead. Nothing is queued unless lookAhead()
 *  is called. */
class PacketQueue {
public:
    explicit PacketQueue(Container& container) : container_(container) {}

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Reads up to that many packets ahead, as far as there are any and they fit in a few
     *  megabytes. */
    const std::deque<PacketPointer>& lookAhead(std::size_t packets);

private:
    Container& container_;
    std::deque<PacketPointer> waiting_;
    std::size_t bytes_ = 0;
    bool hasEnded_ = false;
};

}  // namespace media
