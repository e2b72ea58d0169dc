// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace beatatlas::bench {

struct AvFree {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
template <typename T>
using AvPointer = std::unique_ptr<T, AvFree>;

/** Returns the answer. @throws std::runtime_error if it is one of FFmpeg's negative error
 *  numbers */
inline int avChecked(int answer, const char* what) {
    if (answer < 0) throw std::runtime_error(std::string("FFmpeg: cannot ") + what);
    return answer;
}

struct AvInputClose {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};
using AvInput = std::unique_ptr<AVFormatContext, AvInputClose>;

/** Opens an audio file and reads its stream information. */
inline AvInput openInput(const std::string& path) {
    AVFormatContext* input = nullptr;
    avChecked(avformat_open_input(&input, path.c_str(), nullptr, nullptr), "open a file");
    AvInput owned(input);
    avChecked(avformat_find_stream_info(input, nullptr), "read a file");
    return owned;
}

}  // namespace beatatlas::bench
