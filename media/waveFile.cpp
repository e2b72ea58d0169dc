// SPDX-License-Identifier: MIT
#include "media/waveFile.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/intfloat.h>
#include <libavutil/intreadwrite.h>
}

#include "base/Interrupt.h"
#include "media/Muxer.h"

namespace media {

namespace {

constexpr std::size_t kPacketFrames = 4096;
constexpr std::uint64_t kMostRiffBytes = 0xFFF00000U;  // of 32 bits, less some room for the headers

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
        : recording_(recording), samples_(samples), muxer_(path, "wav") {}

    std::string write(const std::function<void(double)>& shown) {
        open();
        const std::size_t frames = recording_.frames();
        for (std::size_t at = 0; at < frames; at += kPacketFrames) {
            base::Interrupt::check();
            writePacket(at, std::min(kPacketFrames, frames - at));
            shown(static_cast<double>(at) / static_cast<double>(frames));
        }
        return muxer_.commit();
    }

private:
    void open();
    void describe(AVCodecParameters& parameters) const;
    void writePacket(std::size_t at, std::size_t count);

    const Recording& recording_;
    WaveSamples samples_;
    Muxer muxer_;
};

void WaveMuxer::open() {
    AVStream& stream = muxer_.stream();
    stream.time_base = {1, recording_.rate};
    describe(*stream.codecpar);
    const std::uint64_t bytes = static_cast<std::uint64_t>(recording_.frames()) *
                                static_cast<std::uint64_t>(stream.codecpar->block_align);
    muxer_.begin(bytes > kMostRiffBytes ? "rf64=always" : "rf64=never");
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
        muxer_.require(av_channel_layout_from_mask(&parameters.ch_layout, recording_.layoutMask));
    } else {
        parameters.ch_layout.order = AV_CHANNEL_ORDER_UNSPEC;
        parameters.ch_layout.nb_channels = channels;
    }
}

void WaveMuxer::writePacket(std::size_t at, std::size_t count) {
    const PacketPointer packet = makePacket();
    const std::size_t bytes =
        count * recording_.channels.size() * static_cast<std::size_t>(bytesOf(samples_));
    muxer_.require(av_new_packet(packet.get(), static_cast<int>(bytes)));
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
    muxer_.write(*packet);
}

}  // namespace

std::string writeWave(const std::string& path, const Recording& recording, WaveSamples samples,
                      const std::function<void(double)>& shown) {
    return WaveMuxer(path, recording, samples).write(shown);
}

}  // namespace media
