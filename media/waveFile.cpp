// SPDX-License-Identifier: MIT
#include "media/waveFile.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <new>
#include <type_traits>

extern "C" {
#include <libavutil/intfloat.h>
#include <libavutil/intreadwrite.h>
}

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "media/OutputFile.h"
#include "media/ffmpeg.h"

namespace media {

namespace {

constexpr int kBufferBytes = 64 * 1024;
constexpr std::size_t kPacketFrames = 4096;
constexpr std::uint64_t kMostRiffBytes = 0xFFF00000U;  // of 32 bits, less some room for the headers

#if LIBAVFORMAT_VERSION_MAJOR < 61
using WrittenByte = std::uint8_t;
#else
using WrittenByte = const std::uint8_t;
#endif

/** FFmpeg calls back from C code, which no exception may cross: an exception is kept until FFmpeg
 *  has returned. */
struct Output {
    OutputFile& file;
    std::exception_ptr failure;

    template <class Call>
    auto guarded(Call call) -> std::invoke_result_t<Call> {
        if (failure) return AVERROR(EIO);
        try {
            return call();
        } catch (...) {
            failure = std::current_exception();
            return AVERROR(EIO);
        }
    }
};

int writeBytes(void* opaque, WrittenByte* bytes, int count) {
    auto& output = *static_cast<Output*>(opaque);
    return output.guarded([&] {
        output.file.write(bytes, static_cast<std::size_t>(count));
        return count;
    });
}

std::int64_t seekTo(void* opaque, std::int64_t offset, int origin) {
    auto& output = *static_cast<Output*>(opaque);
    if (origin != SEEK_SET) return AVERROR(ENOSYS);
    return output.guarded([&] {
        output.file.seek(offset);
        return offset;
    });
}

struct IoFree {
    void operator()(AVIOContext* context) const {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
};
using IoPointer = std::unique_ptr<AVIOContext, IoFree>;

struct MuxerFree {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};
using MuxerPointer = std::unique_ptr<AVFormatContext, MuxerFree>;

IoPointer makeIo(Output& output) {
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    if (buffer == nullptr) throw std::bad_alloc();
    IoPointer io(avio_alloc_context(buffer, kBufferBytes, 1, &output, nullptr, writeBytes, seekTo));
    if (!io) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    return io;
}

int bytesOf(WaveSamples samples) {
    return samples == WaveSamples::int16 ? 2 : 4;
}

std::int16_t rounded(float sample) {
    if (std::isnan(sample)) return 0;
    return static_cast<std::int16_t>(
        std::lrintf(std::clamp(sample * 32768.0F, -32768.0F, 32767.0F)));
}

/** Writes one WAV file. */
class WaveMuxer {
public:
    WaveMuxer(const std::string& path, const Recording& recording, WaveSamples samples)
        : path_(path), recording_(recording), samples_(samples),
          file_(path), output_{file_, nullptr}, io_(makeIo(output_)) {}

    std::string write(const std::function<void(double)>& shown) {
        open();
        const std::size_t frames = recording_.frames();
        for (std::size_t at = 0; at < frames; at += kPacketFrames) {
            base::Interrupt::check();
            writePacket(at, std::min(kPacketFrames, frames - at));
            shown(static_cast<double>(at) / static_cast<double>(frames));
        }
        require(av_write_trailer(muxer_.get()));
        avio_flush(io_.get());
        require(io_->error);
        return file_.commit();
    }

private:
    void open();
    void describe(AVCodecParameters& parameters) const;
    void writePacket(std::size_t at, std::size_t count);
    void require(int result) const;

    std::string path_;
    const Recording& recording_;
    WaveSamples samples_;
    OutputFile file_;
    Output output_;
    IoPointer io_;
    MuxerPointer muxer_;
};

void WaveMuxer::require(int result) const {
    if (output_.failure) std::rethrow_exception(output_.failure);
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0)
        throw base::OutputError(base::displayName(path_) +
                                " cannot be written: " + ffmpegReason(result));
}

void WaveMuxer::open() {
    AVFormatContext* context = nullptr;
    require(avformat_alloc_output_context2(&context, nullptr, "wav", nullptr));
    muxer_.reset(context);
    context->pb = io_.get();
    context->flags |= AVFMT_FLAG_BITEXACT | AVFMT_FLAG_CUSTOM_IO;
    AVStream* stream = avformat_new_stream(context, nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    stream->time_base = {1, recording_.rate};
    describe(*stream->codecpar);
    const std::uint64_t bytes = static_cast<std::uint64_t>(recording_.frames()) *
                                static_cast<std::uint64_t>(stream->codecpar->block_align);
    AVDictionary* options = nullptr;
    av_dict_set(&options, "rf64", bytes > kMostRiffBytes ? "always" : "never", 0);
    const int written = avformat_write_header(context, &options);
    av_dict_free(&options);
    require(written);
}

void WaveMuxer::describe(AVCodecParameters& parameters) const {
    const int channels = static_cast<int>(recording_.channels.size());
    const bool isInt16 = samples_ == WaveSamples::int16;
    parameters.codec_type = AVMEDIA_TYPE_AUDIO;
    parameters.codec_id = isInt16 ? AV_CODEC_ID_PCM_S16LE : AV_CODEC_ID_PCM_F32LE;
    parameters.format = isInt16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_FLT;
    parameters.sample_rate = recording_.rate;
    parameters.bits_per_coded_sample = 8 * bytesOf(samples_);
    parameters.block_align = channels * bytesOf(samples_);
    if (recording_.layoutMask != 0) {
        require(av_channel_layout_from_mask(&parameters.ch_layout, recording_.layoutMask));
    } else {
        parameters.ch_layout.order = AV_CHANNEL_ORDER_UNSPEC;
        parameters.ch_layout.nb_channels = channels;
    }
}

void WaveMuxer::writePacket(std::size_t at, std::size_t count) {
    const PacketPointer packet = makePacket();
    const std::size_t bytes =
        count * recording_.channels.size() * static_cast<std::size_t>(bytesOf(samples_));
    require(av_new_packet(packet.get(), static_cast<int>(bytes)));
    std::uint8_t* next = packet->data;
    for (std::size_t i = at; i < at + count; ++i) {
        for (const auto& channel : recording_.channels) {
            if (samples_ == WaveSamples::int16)
                AV_WL16(next, static_cast<std::uint16_t>(rounded(channel[i])));
            else
                AV_WL32(next, av_float2int(channel[i]));
            next += bytesOf(samples_);
        }
    }
    packet->pts = packet->dts = static_cast<std::int64_t>(at);
    packet->duration = static_cast<std::int64_t>(count);
    require(av_write_frame(muxer_.get(), packet.get()));
}

}  // namespace

std::string writeWave(const std::string& path, const Recording& recording, WaveSamples samples,
                      const std::function<void(double)>& shown) {
    return WaveMuxer(path, recording, samples).write(shown);
}

}  // namespace media
