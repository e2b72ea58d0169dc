// SPDX-License-Identifier: MIT
#include "media/StreamDecoder.h"

#include <new>

#include "base/errors.h"

namespace media {

StreamDecoder::StreamDecoder(const AVStream& stream, const EncoderDelay& delay) {
    const AVCodecID id = stream.codecpar->codec_id;
    const std::string refusal =
        std::string("holds audio that cannot be decoded (") + avcodec_get_name(id) + ")";
    const AVCodec* decoder = avcodec_find_decoder(id);
    if (decoder == nullptr) throw base::TrackError(refusal);
    context_.reset(avcodec_alloc_context3(decoder));
    if (!context_) throw std::bad_alloc();
    if (avcodec_parameters_to_context(context_.get(), stream.codecpar) < 0) throw std::bad_alloc();
    context_->pkt_timebase = stream.time_base;
    context_->thread_count = 1;
    delay.prepare(*context_);
    if (avcodec_open2(context_.get(), decoder, nullptr) < 0) throw base::TrackError(refusal);
}

bool StreamDecoder::send(const AVPacket* packet) {
    const int result = avcodec_send_packet(context_.get(), packet);
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    return result >= 0 || result == AVERROR_EOF;
}

StreamDecoder::Outcome StreamDecoder::receive(AVFrame& frame) {
    const int result = avcodec_receive_frame(context_.get(), &frame);
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result >= 0) return Outcome::frame;
    return result == AVERROR(EAGAIN) || result == AVERROR_EOF ? Outcome::needsPacket
                                                              : Outcome::damaged;
}

std::string StreamDecoder::codec() const {
    return avcodec_get_name(context_->codec_id);
}

bool StreamDecoder::isLossless() const {
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(context_->codec_id);
    const int props = descriptor == nullptr ? 0 : descriptor->props;
    return (props & AV_CODEC_PROP_LOSSLESS) != 0 && (props & AV_CODEC_PROP_LOSSY) == 0;
}

}  // namespace media
