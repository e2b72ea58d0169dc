// SPDX-License-Identifier: MIT
#include "support/AudioFileWriter.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "media/ffmpeg.h"

extern "C" {
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace test {

namespace {

constexpr int kUsualBlock = 4096;

int require(int result, const char* what) {
    if (result < 0)
        throw std::runtime_error(std::string(what) + ": " + media::ffmpegReason(result));
    return result;
}

/** One file on its way: format context, encoder and sample converter, freed whatever happens. */
class Writer {
public:
    Writer(const FileKind& kind, const Sound& sound) : kind_(kind), sound_(sound) {}

    ~Writer() {
        swr_free(&converter_);
        avcodec_free_context(&encoder_);
        if (format_ != nullptr) avio_closep(&format_->pb);
        avformat_free_context(format_);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void open(const std::string& path) {
        require(avformat_alloc_output_context2(&format_, nullptr, kind_.muxer, path.c_str()),
                "muxer");
        format_->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
        openEncoder();
        addStream();
        if (kind_.hasCover) addCover();
        require(avio_open(&format_->pb, ("file:" + path).c_str(), AVIO_FLAG_WRITE), "open");
        av_dict_parse_string(&format_->metadata, kind_.tags, "=", ":", 0);
        AVDictionary* options = nullptr;
        av_dict_parse_string(&options, kind_.muxerOptions, "=", ":", 0);
        const int written = avformat_write_header(format_, &options);
        av_dict_free(&options);
        require(written, "header");
    }

    void write() {
        if (kind_.hasCover) writeCover();
        const std::size_t block =
            encoder_->frame_size > 0 ? static_cast<std::size_t>(encoder_->frame_size) : kUsualBlock;
        for (std::size_t at = 0; at < sound_.frames(); at += block) {
            encode(makeBlock(at, std::min(block, sound_.frames() - at)).get());
        }
        encode(nullptr);
        require(av_write_trailer(format_), "trailer");
    }

private:
    void openEncoder() {
        const AVCodec* codec = avcodec_find_encoder_by_name(kind_.encoder);
        if (codec == nullptr) throw std::runtime_error(std::string("no encoder ") + kind_.encoder);
        encoder_ = avcodec_alloc_context3(codec);
        encoder_->sample_rate = sound_.rate;
        encoder_->sample_fmt = codec->sample_fmts[0];
        encoder_->bit_rate = kind_.bitRate;
        encoder_->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
        av_channel_layout_default(&encoder_->ch_layout, static_cast<int>(sound_.channels.size()));
        if ((format_->oformat->flags & AVFMT_GLOBALHEADER) != 0)
            encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        AVDictionary* options = nullptr;
        av_dict_parse_string(&options, kind_.encoderOptions, "=", ":", 0);
        const int opened = avcodec_open2(encoder_, codec, &options);
        av_dict_free(&options);
        require(opened, "encoder");
        AVChannelLayout layout = encoder_->ch_layout;
        require(swr_alloc_set_opts2(&converter_, &layout, encoder_->sample_fmt, sound_.rate,
                                    &layout, AV_SAMPLE_FMT_FLTP, sound_.rate, 0, nullptr),
                "converter");
        require(swr_init(converter_), "converter");
    }

    void addStream() {
        stream_ = avformat_new_stream(format_, nullptr);
        stream_->time_base = {1, sound_.rate};
        require(avcodec_parameters_from_context(stream_->codecpar, encoder_), "parameters");
        // As FFmpeg's own program has it.
        const std::string name = std::string(LIBAVCODEC_IDENT) + " " + kind_.encoder;
        av_dict_set(&stream_->metadata, "encoder", name.c_str(), 0);
    }

    void addCover() {
        cover_ = avformat_new_stream(format_, nullptr);
        cover_->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
        cover_->codecpar->codec_id = AV_CODEC_ID_PNG;
        cover_->codecpar->width = 1;
        cover_->codecpar->height = 1;
        cover_->disposition = AV_DISPOSITION_ATTACHED_PIC;
    }

    /** A PNG of one pixel. */
    void writeCover() {
        static const unsigned char kPixel[] = {
            0x89, 'P',  'N',  'G',  0x0D, 0x0A, 0x1A, 0x0A, 0,    0,    0,    13,   'I',  'H',
            'D',  'R',  0,    0,    0,    1,    0,    0,    0,    1,    8,    0,    0,    0,
            0,    0x3A, 0x7E, 0x9B, 0x55, 0,    0,    0,    10,   'I',  'D',  'A',  'T',  0x78,
            0x9C, 0x63, 0x60, 0,    0,    0,    2,    0,    1,    0x48, 0xAF, 0xA4, 0x71, 0,
            0,    0,    0,    'I',  'E',  'N',  'D',  0xAE, 0x42, 0x60, 0x82};
        const media::PacketPointer packet = media::makePacket();
        require(av_new_packet(packet.get(), sizeof kPixel), "cover");
        std::memcpy(packet->data, kPixel, sizeof kPixel);
        packet->stream_index = cover_->index;
        packet->flags |= AV_PKT_FLAG_KEY;
        require(av_interleaved_write_frame(format_, packet.get()), "cover");
    }

    media::FramePointer makeBlock(std::size_t at, std::size_t count) {
        media::FramePointer frame = media::makeFrame();
        frame->nb_samples = static_cast<int>(count);
        frame->format = encoder_->sample_fmt;
        frame->sample_rate = sound_.rate;
        frame->pts = static_cast<std::int64_t>(at);
        av_channel_layout_copy(&frame->ch_layout, &encoder_->ch_layout);
        require(av_frame_get_buffer(frame.get(), 0), "frame");
        std::vector<const std::uint8_t*> planes;
        for (const auto& channel : sound_.channels) {
            planes.push_back(reinterpret_cast<const std::uint8_t*>(channel.data() + at));
        }
        require(swr_convert(converter_, frame->extended_data, frame->nb_samples, planes.data(),
                            frame->nb_samples),
                "convert");
        return frame;
    }

    void encode(const AVFrame* frame) {
        require(avcodec_send_frame(encoder_, frame), "encode");
        const media::PacketPointer packet = media::makePacket();
        while (avcodec_receive_packet(encoder_, packet.get()) >= 0) {
            av_packet_rescale_ts(packet.get(), {1, sound_.rate}, stream_->time_base);
            packet->stream_index = stream_->index;
            require(av_interleaved_write_frame(format_, packet.get()), "write");
        }
    }

    FileKind kind_;
    const Sound& sound_;
    AVFormatContext* format_ = nullptr;
    AVCodecContext* encoder_ = nullptr;
    SwrContext* converter_ = nullptr;
    AVStream* stream_ = nullptr;
    AVStream* cover_ = nullptr;
};

}  // namespace

void writeAudioFile(const std::string& path, const FileKind& kind, const Sound& sound) {
    media::showFfmpegMessages(false);
    Writer writer(kind, sound);
    writer.open(path);
    writer.write();
}

}  // namespace test
