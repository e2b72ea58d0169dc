// SPDX-License-Identifier: MIT
#include "media/time/PacketQueue.h"

namespace media {

namespace {

constexpr std::size_t kMostBytes = std::size_t{4} << 20;

}  // namespace

bool PacketQueue::next(AVPacket& packet) {
    if (waiting_.empty()) return !hasEnded_ && container_.next(packet);
    av_packet_move_ref(&packet, waiting_.front().get());
    waiting_.pop_front();
    bytes_ -= static_cast<std::size_t>(packet.size);
    return true;
}

const std::deque<PacketPointer>& PacketQueue::lookAhead(std::size_t packets) {
    while (!hasEnded_ && waiting_.size() < packets && bytes_ < kMostBytes) {
        PacketPointer packet = makePacket();
        hasEnded_ = !container_.next(*packet);
        if (hasEnded_) break;
        bytes_ += static_cast<std::size_t>(packet->size);
        waiting_.push_back(std::move(packet));
    }
    return waiting_;
}

}  // namespace media
