// SPDX-License-Identifier: MIT
#include "bench/decodeTrack.h"

#include "bench/avPointers.h"

namespace beatatlas::bench {

namespace {

AvPointer<AVCodecContext> openDecoder(const AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr) throw std::runtime_error("FFmpeg: no decoder");
    AvPointer<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    avChecked(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "tell the decoder");
    decoder->thread_count = 1;
    avChecked(avcodec_open2(decoder.get(), codec, nullptr), "open the decoder");
    return decoder;
}

std::int64_t framesReady(AVCodecContext& decoder, AVFrame& frame) {
    std::int64_t frames = 0;
    while (avcodec_receive_frame(&decoder, &frame) >= 0) frames += frame.nb_samples;
    return frames;
}

}  // namespace

std::int64_t decodeTrack(const std::string& path) {
    av_log_set_level(AV_LOG_ERROR);
    const AvInput input = openInput(path);
    const int index = avChecked(
        av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0), "find the audio");
    const AvPointer<AVCodecContext> decoder = openDecoder(*input->streams[index]);
    const AvPointer<AVPacket> packet(av_packet_alloc());
    const AvPointer<AVFrame> frame(av_frame_alloc());
    std::int64_t frames = 0;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == index) {
            avChecked(avcodec_send_packet(decoder.get(), packet.get()), "decode");
            frames += framesReady(*decoder, *frame);
        }
        av_packet_unref(packet.get());
    }
    avChecked(avcodec_send_packet(decoder.get(), nullptr), "decode the end");
    return frames + framesReady(*decoder, *frame);
}

}  // namespace beatatlas::bench
