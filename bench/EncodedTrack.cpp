// SPDX-License-Identifier: MIT
#include "bench/EncodedTrack.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <unistd.h>

#include "bench/avPointers.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace beatatlas::bench {

namespace {

constexpr int kRate = 44100;
constexpr int kFramesWhereFree = 4096;

/** Writes frames of a track into a container. */
class TrackEncoder {
public:
    TrackEncoder(const AVCodec& codec, const Encoding& how, const std::string& path);
    ~TrackEncoder();
    TrackEncoder(const TrackEncoder&) = delete;
    TrackEncoder& operator=(const TrackEncoder&) = delete;

    void encode(const test::StereoTrack& track);

private:
    void openEncoder(const AVCodec& codec, const Encoding& how);
    void openContainer(const std::string& path);
    void send(const test::StereoTrack& track, std::int64_t from, int count);
    void writePackets();

    AVFormatContext* container_ = nullptr;
    AvPointer<AVCodecContext> encoder_;
    AvPointer<AVPacket> packet_{av_packet_alloc()};
};

TrackEncoder::TrackEncoder(const AVCodec& codec, const Encoding& how, const std::string& path) {
    avChecked(avformat_alloc_output_context2(&container_, nullptr, nullptr, path.c_str()),
              "make a container");
    openEncoder(codec, how);
    openContainer(path);
}

TrackEncoder::~TrackEncoder() {
    if (container_->pb != nullptr) avio_closep(&container_->pb);
    avformat_free_context(container_);
}

void TrackEncoder::openEncoder(const AVCodec& codec, const Encoding& how) {
    encoder_.reset(avcodec_alloc_context3(&codec));
    encoder_->sample_fmt = codec.sample_fmts[0];
    // Lossless encoders take the 16-bit samples unchanged.
    for (const AVSampleFormat* f = codec.sample_fmts; *f != AV_SAMPLE_FMT_NONE; ++f)
        if (*f == AV_SAMPLE_FMT_S16 || *f == AV_SAMPLE_FMT_S16P || *f == AV_SAMPLE_FMT_FLTP)
            encoder_->sample_fmt = *f;
    encoder_->sample_rate = kRate;
    encoder_->bit_rate = how.bitRate;
    encoder_->time_base = {1, kRate};
    av_channel_layout_default(&encoder_->ch_layout, 2);
    if ((container_->oformat->flags & AVFMT_GLOBALHEADER) != 0)
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    avChecked(avcodec_open2(encoder_.get(), &codec, nullptr), "open the encoder");
}

void TrackEncoder::openContainer(const std::string& path) {
    AVStream* stream = avformat_new_stream(container_, nullptr);
    avChecked(avcodec_parameters_from_context(stream->codecpar, encoder_.get()), "tell the stream");
    stream->time_base = encoder_->time_base;
    avChecked(avio_open(&container_->pb, path.c_str(), AVIO_FLAG_WRITE), "write a file");
    avChecked(avformat_write_header(container_, nullptr), "write a header");
}

void TrackEncoder::encode(const test::StereoTrack& track) {
    const auto length = static_cast<std::int64_t>(track.left.size());
    const int step = encoder_->frame_size > 0 ? encoder_->frame_size : kFramesWhereFree;
    for (std::int64_t from = 0; from < length; from += step)
        send(track, from, static_cast<int>(std::min<std::int64_t>(step, length - from)));
    avChecked(avcodec_send_frame(encoder_.get(), nullptr), "end the track");
    writePackets();
    avChecked(av_write_trailer(container_), "write a trailer");
}

void TrackEncoder::send(const test::StereoTrack& track, std::int64_t from, int count) {
    const AvPointer<AVFrame> frame(av_frame_alloc());
    frame->nb_samples = count;
    frame->format = encoder_->sample_fmt;
    frame->sample_rate = kRate;
    frame->pts = from;
    avChecked(av_channel_layout_copy(&frame->ch_layout, &encoder_->ch_layout), "lay out channels");
    avChecked(av_frame_get_buffer(frame.get(), 0), "find memory");
    for (int channel = 0; channel < 2; ++channel) {
        const float* in = (channel == 0 ? track.left : track.right).data() + from;
        const bool isPlanar = av_sample_fmt_is_planar(encoder_->sample_fmt) != 0;
        auto* whole = reinterpret_cast<std::int16_t*>(frame->data[isPlanar ? channel : 0]);
        if (!isPlanar) whole += channel;
        auto* real = reinterpret_cast<float*>(frame->data[channel]);
        for (int i = 0; i < count; ++i) {
            if (encoder_->sample_fmt == AV_SAMPLE_FMT_FLTP)
                real[i] = in[i] / 32768.0F;
            else
                whole[isPlanar ? i : 2 * i] = static_cast<std::int16_t>(in[i]);
        }
    }
    avChecked(avcodec_send_frame(encoder_.get(), frame.get()), "encode");
    writePackets();
}

void TrackEncoder::writePackets() {
    while (avcodec_receive_packet(encoder_.get(), packet_.get()) >= 0) {
        packet_->stream_index = 0;
        av_packet_rescale_ts(packet_.get(), encoder_->time_base, container_->streams[0]->time_base);
        avChecked(av_interleaved_write_frame(container_, packet_.get()), "write a packet");
    }
}

struct OutputClose {
    void operator()(AVFormatContext* output) const {
        avio_closep(&output->pb);
        avformat_free_context(output);
    }
};
using Output = std::unique_ptr<AVFormatContext, OutputClose>;

Output openOutput(const std::string& path, const AVStream& like) {
    AVFormatContext* output = nullptr;
    avChecked(avformat_alloc_output_context2(&output, nullptr, nullptr, path.c_str()),
              "make a container");
    Output owned(output);
    AVStream* stream = avformat_new_stream(output, nullptr);
    avChecked(avcodec_parameters_copy(stream->codecpar, like.codecpar), "tell the stream");
    stream->codecpar->codec_tag = 0;
    stream->time_base = like.time_base;
    avChecked(avio_open(&output->pb, path.c_str(), AVIO_FLAG_WRITE), "write a file");
    avChecked(avformat_write_header(output, nullptr), "write a header");
    return owned;
}

/** Copies all packets, delayed by `later`. @return where the next copy begins, in the time base of
 *  the input */
std::int64_t copyPackets(const std::string& path, AVFormatContext& output, std::int64_t later) {
    const AvInput input = openInput(path);
    const AVRational timeBase = input->streams[0]->time_base;
    const AvPointer<AVPacket> packet(av_packet_alloc());
    std::int64_t end = later;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        packet->pts += later;
        packet->dts = packet->pts;
        packet->pos = -1;
        end = packet->pts + packet->duration;
        av_packet_rescale_ts(packet.get(), timeBase, output.streams[0]->time_base);
        avChecked(av_write_frame(&output, packet.get()), "write a packet");
        av_packet_unref(packet.get());
    }
    return end;
}

std::string pathOfNewFile(const std::string& ending) {
    const char* place = std::getenv("TMPDIR");
    std::string path =
        std::string(place == nullptr ? "/tmp" : place) + "/beatatlas-bench-XXXXXX." + ending;
    const int file = mkstemps(path.data(), static_cast<int>(ending.size()) + 1);
    avChecked(file, "make a temporary file");
    close(file);
    return path;
}

}  // namespace

std::optional<EncodedTrack> EncodedTrack::make(const test::StereoTrack& track,
                                               const Encoding& how) {
    const AVCodec* codec = avcodec_find_encoder_by_name(how.encoder.c_str());
    if (codec == nullptr) return std::nullopt;
    av_log_set_level(AV_LOG_ERROR);
    EncodedTrack encoded(pathOfNewFile(how.ending));
    TrackEncoder(*codec, how, encoded.path()).encode(track);
    return encoded;
}

EncodedTrack EncodedTrack::repeated(int times, const std::string& ending) const {
    EncodedTrack longer(pathOfNewFile(ending));
    const Output output = openOutput(longer.path(), *openInput(path_)->streams[0]);
    std::int64_t end = 0;
    for (int i = 0; i < times; ++i) end = copyPackets(path_, *output, end);
    avChecked(av_write_trailer(output.get()), "write a trailer");
    return longer;
}

EncodedTrack::EncodedTrack(EncodedTrack&& other) noexcept : path_(std::move(other.path_)) {
    other.path_.clear();
}

EncodedTrack::~EncodedTrack() {
    if (!path_.empty()) unlink(path_.c_str());
}

}  // namespace beatatlas::bench
