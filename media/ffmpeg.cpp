// SPDX-License-Identifier: MIT
#include "media/ffmpeg.h"

#include <array>
#include <new>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace media {

PacketPointer makePacket() {
    PacketPointer packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    return packet;
}

FramePointer makeFrame() {
    FramePointer frame(av_frame_alloc());
    if (!frame) throw std::bad_alloc();
    return frame;
}

std::string ffmpegReason(int errorNumber) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(errorNumber, text.data(), text.size());
    return text.data();
}

void showFfmpegMessages(bool shown) {
    av_log_set_level(shown ? AV_LOG_WARNING : AV_LOG_QUIET);
}

}  // namespace media
