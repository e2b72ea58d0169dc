// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
}

namespace media {

struct PacketFree {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using PacketPointer = std::unique_ptr<AVPacket, PacketFree>;

struct FrameFree {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using FramePointer = std::unique_ptr<AVFrame, FrameFree>;

/** @throws std::bad_alloc */
PacketPointer makePacket();
FramePointer makeFrame();

/** FFmpeg's description of one of its error numbers. */
std::string ffmpegReason(int errorNumber);

/** FFmpeg's own messages appear on standard error, or nowhere. The tool reports failures itself. */
void showFfmpegMessages(bool shown);

}  // namespace media
