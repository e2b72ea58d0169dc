// SPDX-License-Identifier: MIT
#include "media/AudioWriter.h"

#include <algorithm>
#include <array>
#include <new>

extern "C" {
#include <libswresample/swresample.h>
}

#include "base/Interrupt.h"

namespace media {

namespace {

// Where the encoder takes any number of frames.
constexpr int kUsualFrames = 4096;

const AVCodec* encoderOf(const AudioKind& kind) {
    return avcodec_find_encoder_by_name(kind.encoder);
}

}  // namespace

void AudioWriter::ConverterFree::operator()(SwrContext* context) const {
    swr_free(&context);
}

AudioWriter::AudioWriter(const std::string& path, const AudioKind& kind, int rate)
    : muxer_(path, kind.muxer) {
    openEncoder(kind, rate);
    openConverter();
    beginFile(kind);
    gathered_.resize(
        static_cast<std::size_t>(encoder_->frame_size > 0 ? encoder_->frame_size : kUsualFrames));
}

AudioWriter::~AudioWriter() = default;

int AudioWriter::rateFor(const AudioKind& kind, int rate) {
    const int* rates = encoderOf(kind)->supported_samplerates;
    int highest = 0;
    for (; rates != nullptr && *rates != 0; ++rates) {
        if (*rates == rate) return rate;
        highest = std::max(highest, *rates);
    }
    return highest == 0 ? rate : highest;
}

void AudioWriter::openEncoder(const AudioKind& kind, int rate) {
    const AVCodec* codec = encoderOf(kind);
    encoder_.reset(avcodec_alloc_context3(codec));
    if (!encoder_) throw std::bad_alloc();
    encoder_->sample_rate = rate;
    encoder_->sample_fmt = kind.samples;
    encoder_->bit_rate = kind.bitRate;
    encoder_->time_base = {1, rate};
    encoder_->flags |= AV_CODEC_FLAG_BITEXACT;
    av_channel_layout_default(&encoder_->ch_layout, 2);
    if (muxer_.wantsGlobalHeader()) encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    muxer_.require(avcodec_open2(encoder_.get(), codec, nullptr));
}

void AudioWriter::openConverter() {
    SwrContext* converter = nullptr;
    AVChannelLayout layout = encoder_->ch_layout;
    const int made =
        swr_alloc_set_opts2(&converter, &layout, encoder_->sample_fmt, encoder_->sample_rate,
                            &layout, AV_SAMPLE_FMT_FLTP, encoder_->sample_rate, 0, nullptr);
    converter_.reset(converter);
    muxer_.require(made);
    muxer_.require(swr_init(converter));
}

void AudioWriter::beginFile(const AudioKind& kind) {
    AVStream& stream = muxer_.stream();
    stream.time_base = encoder_->time_base;
    muxer_.require(avcodec_parameters_from_context(stream.codecpar, encoder_.get()));
    std::string options = kind.muxerOptions;
    if (kind.rateOption != nullptr)
        options += std::string(kind.rateOption) + "=" + std::to_string(encoder_->sample_rate);
    muxer_.begin(options.c_str());
}

void AudioWriter::write(const StereoBlock& block) {
    for (std::size_t at = 0; at < block.frames();) {
        const std::size_t count = std::min(block.frames() - at, gathered_.frames() - filled_);
        std::copy_n(block.left.data() + at, count, gathered_.left.data() + filled_);
        std::copy_n(block.right.data() + at, count, gathered_.right.data() + filled_);
        at += count;
        filled_ += count;
        if (filled_ == gathered_.frames()) encodeGathered();
    }
}

void AudioWriter::encodeGathered() {
    base::Interrupt::check();
    const FramePointer frame = makeFrame();
    frame->nb_samples = static_cast<int>(filled_);
    frame->format = encoder_->sample_fmt;
    frame->sample_rate = encoder_->sample_rate;
    frame->pts = position_;
    muxer_.require(av_channel_layout_copy(&frame->ch_layout, &encoder_->ch_layout));
    muxer_.require(av_frame_get_buffer(frame.get(), 0));
    std::array<const std::uint8_t*, 2> planes = {
        reinterpret_cast<const std::uint8_t*>(gathered_.left.data()),
        reinterpret_cast<const std::uint8_t*>(gathered_.right.data())};
    muxer_.require(swr_convert(converter_.get(), frame->extended_data, frame->nb_samples,
                               planes.data(), frame->nb_samples));
    encode(frame.get());
    position_ += frame->nb_samples;
    filled_ = 0;
}

void AudioWriter::encode(const AVFrame* frame) {
    muxer_.require(avcodec_send_frame(encoder_.get(), frame));
    const PacketPointer packet = makePacket();
    for (;;) {
        const int received = avcodec_receive_packet(encoder_.get(), packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) return;
        muxer_.require(received);
        av_packet_rescale_ts(packet.get(), encoder_->time_base, muxer_.stream().time_base);
        muxer_.write(*packet);
        av_packet_unref(packet.get());
    }
}

std::string AudioWriter::commit() {
    if (filled_ > 0) encodeGathered();
    encode(nullptr);
    return muxer_.commit();
}

}  // namespace media
