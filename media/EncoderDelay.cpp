// SPDX-License-Identifier: MIT
#include "media/EncoderDelay.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <libavutil/intreadwrite.h>

#include "media/Container.h"
#include "media/end/cafPriming.h"

namespace media {

namespace {

/** Frames from the first decoded one to the first of music: delay of encoder and decoder together.
 *  The first matching row counts. */
struct UsualDelay {
    AVCodecID codec;
    int frames;
    int rate = 0;                  // of the codec; 0: any
    std::string_view writer = {};  // start of the program's name, or end of the encoder's
};

// Where the figures come from: MP2, MP1   The filter bank of ISO 11172-3, 240.5 frames to either
//   side. MP3        LAME begins with 576 frames of silence, and every decoder adds 529 (LAME's
//   technical FAQ). An encoder with the filter bank as ISO prints it, as Shine, has 528 for 576.
//   AAC        One block of 1024, the least that its overlapping blocks need, is what FFmpeg's
//   encoder has; Apple's have 2112, which QuickTime assumes when the file states none (Technical
//   Note TN2258). AC-3       Half of its transform of 512 (ATSC A/52). DTS        The 512 taps of
//   its filter bank (ETSI TS 102 114). G.722      The 24 taps of its two quadrature mirror filters
//   (ITU-T G.722). G.723.1    A look-ahead of 7.5 ms at 8 kHz (ITU-T G.723.1). Nellymoser Half of
//   its transform of 256. RealAudio 14.4   A block of 20 ms at 8 kHz, by which FFmpeg's encoder
//   looks ahead. Opus       The look-ahead of libopus, 6.5 ms at 48 kHz (its OPUS_GET_LOOKAHEAD).
//   Speex      The look-ahead of encoder and decoder (libspeex' SPEEX_GET_LOOKAHEAD): 40 + 40 in
//   narrow band, 143 + 80 in wide, 349 + 160 in ultra-wide band. All but Apple's and those of MPEG
//   layer 1 were found with FFmpeg's encoders as well, by tests/media/positions.
constexpr std::array kUsualDelays = {
    UsualDelay{AV_CODEC_ID_MP1, 481},
    UsualDelay{AV_CODEC_ID_MP2, 481},
    UsualDelay{AV_CODEC_ID_MP3, 528 + 529, 0, "libshine"},
    UsualDelay{AV_CODEC_ID_MP3, 576 + 529},
    UsualDelay{AV_CODEC_ID_AAC, 2112, 0, "iTunes"},
    UsualDelay{AV_CODEC_ID_AAC, 2112, 0, "com.apple"},
    UsualDelay{AV_CODEC_ID_AAC, 2112, 0, "QuickTime"},
    UsualDelay{AV_CODEC_ID_AAC, 2112, 0, "qaac"},
    UsualDelay{AV_CODEC_ID_AAC, 1024},
    UsualDelay{AV_CODEC_ID_AAC_LATM, 1024},
    UsualDelay{AV_CODEC_ID_AC3, 256},
    UsualDelay{AV_CODEC_ID_EAC3, 256},
    UsualDelay{AV_CODEC_ID_DTS, 512},
    UsualDelay{AV_CODEC_ID_ADPCM_G722, 22},
    UsualDelay{AV_CODEC_ID_G723_1, 60},
    UsualDelay{AV_CODEC_ID_NELLYMOSER, 128},
    UsualDelay{AV_CODEC_ID_RA_144, 160},
    UsualDelay{AV_CODEC_ID_OPUS, 312},
    UsualDelay{AV_CODEC_ID_SPEEX, 40 + 40, 8000},
    UsualDelay{AV_CODEC_ID_SPEEX, 143 + 80, 16000},
    UsualDelay{AV_CODEC_ID_SPEEX, 349 + 160, 32000},
};

// What FFmpeg drops when an MP3's header states an encoder delay of 0, and when it has -529 in its
// twelve bits.
constexpr std::int64_t kMp3DecoderDelay = 529;
constexpr std::int64_t kMp3NegativeDelay = 4096;

constexpr std::int64_t kWmaBlocksDropped = 2;  // by its decoder

bool isWmaByFfmpeg(const Container& container) {
    const AVCodecID codec = container.stream().codecpar->codec_id;
    if (codec != AV_CODEC_ID_WMAV1 && codec != AV_CODEC_ID_WMAV2) return false;
    return container.writer().starts_with("Lavf");
}

/** A lossless stream around a lossy core: the encoder is free to choose its delay. */
bool isLosslessDts(const AVCodecParameters& codec) {
    return codec.codec_id == AV_CODEC_ID_DTS && codec.profile == FF_PROFILE_DTS_HD_MA;
}

/** Transport streams and MP4 call every layer of MPEG audio MP3; the packets show which it is. */
bool isLayer2(const AVPacket& packet) {
    return packet.size >= 2 && packet.data[0] == 0xFF && (packet.data[1] & 0xE6) == 0xE4;
}

/** Whether this is the frame with LAME's or Xing's header, which some programs copy along with the
 *  music. The header follows where the side information of an ordinary frame would end. */
bool isMp3Header(const AVPacket& packet) {
    const std::string_view bytes(reinterpret_cast<const char*>(packet.data),
                                 static_cast<std::size_t>(packet.size));
    for (const std::size_t at : {4U + 9U, 4U + 17U, 4U + 32U}) {
        if (bytes.size() < at + 4) return false;
        const std::string_view mark = bytes.substr(at, 4);
        if (mark == "Xing" || mark == "Info") return true;
    }
    return false;
}

}  // namespace

EncoderDelay::EncoderDelay(const Container& container, const FileInput& input)
    : container_(container), input_(input), codec_(container.stream().codecpar->codec_id) {}

void EncoderDelay::prepare(AVCodecContext& context) const {
    // Windows' encoders begin with two blocks of silence, FFmpeg's with one; the decoder always
    // drops two.
    if (isWmaByFfmpeg(container_)) context.flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
}

void EncoderDelay::look(AVPacket& first) {
    if (codec_ == AV_CODEC_ID_MP3 && isLayer2(first)) codec_ = AV_CODEC_ID_MP2;
    beginsWithHeader_ = codec_ == AV_CODEC_ID_MP3 && isMp3Header(first);
    firstTime_ = first.pts;
    isFirstLeftOut_ = (first.flags & AV_PKT_FLAG_DISCARD) != 0;
    std::size_t size = 0;
    std::uint8_t* skipped = av_packet_get_side_data(&first, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (skipped == nullptr || size < 4) return;
    stated_ = AV_RL32(skipped);
    if (!isTagOfCopy()) return;
    stated_ = usualFrames(0);
    AV_WL32(skipped, static_cast<std::uint32_t>(stated_));
}

/** When FFmpeg copies an MP3, or the encoder reports no delay to it, the header that FFmpeg writes
 *  states only the decoder's delay, or a negative one, which wraps around in the header's twelve
 *  bits. */
bool EncoderDelay::isTagOfCopy() const {
    const bool isOfMp3 = codec_ == AV_CODEC_ID_MP3 && container_.isFormat("mp3");
    return isOfMp3 && (stated_ == kMp3DecoderDelay || stated_ == kMp3NegativeDelay) &&
           container_.writer().starts_with("Lav");
}

std::int64_t EncoderDelay::framesToDrop(int blockFrames, int rate) const {
    if (isWmaByFfmpeg(container_)) return blockFrames;
    const AVCodecParameters& codec = *container_.stream().codecpar;
    if (codec_ == AV_CODEC_ID_OPUS && codec.initial_padding > 0) {
        // FFmpeg's decoder drops the pre-skip. In MP4 of a rate other than 48 kHz an edit list
        // makes it drop that number of frames at the other rate, which is less.
        return stated_ == 0 ? 0 : std::max<std::int64_t>(0, codec.initial_padding - stated_);
    }
    // Speex files state the look-ahead of the encoder, never that of the decoder.
    if (stated_ > 0 && codec_ == AV_CODEC_ID_SPEEX)
        return std::max<std::int64_t>(0, usualFrames(rate) - stated_);
    if (stated_ > 0) return 0;
    // A delay of a second or more is damage.
    const bool hasCodecDelay = codec.initial_padding > 0 && codec.initial_padding < rate;
    if (container_.isFormat("matroska") && hasCodecDelay) return codec.initial_padding;
    const std::int64_t priming = container_.isFormat("caf") ? cafPriming(input_) : 0;
    if (priming > 0) return priming;
    if (isLosslessDts(codec)) return 0;
    return usualFrames(rate) + (beginsWithHeader_ ? blockFrames : 0);
}

std::int64_t EncoderDelay::framesDroppedByFfmpeg(const AVFrame& first) const {
    // Vorbis' first packet has a time and yields nothing.
    if (codec_ == AV_CODEC_ID_VORBIS) return 0;
    if (codec_ == AV_CODEC_ID_WMAV1 || codec_ == AV_CODEC_ID_WMAV2)
        return isWmaByFfmpeg(container_) ? 0 : kWmaBlocksDropped * first.nb_samples;
    if (firstTime_ == AV_NOPTS_VALUE || first.pts == AV_NOPTS_VALUE) return stated_;
    const bool isToldByFile = stated_ > 0 || firstTime_ < 0 || isFirstLeftOut_;
    // The decoder of Opus drops what its own header tells.
    if (!isToldByFile && codec_ != AV_CODEC_ID_OPUS) return 0;
    std::int64_t ticks = 0;
    if (__builtin_sub_overflow(first.pts, firstTime_, &ticks)) return stated_;
    const std::int64_t frames =
        av_rescale_q(ticks, container_.stream().time_base, {1, first.sample_rate});
    // More than a second is no delay but damage.
    return frames > 0 && frames <= first.sample_rate ? frames : stated_;
}

std::int64_t EncoderDelay::usualFrames(int rate) const {
    const std::string program = container_.writer();
    const std::string encoder = container_.encoder();
    const auto fits = [&](const UsualDelay& row) {
        if (row.codec != codec_) return false;
        if (row.rate != 0 && row.rate != rate) return false;
        return row.writer.empty() || program.starts_with(row.writer) ||
               encoder.ends_with(row.writer);
    };
    const auto* row = std::find_if(kUsualDelays.begin(), kUsualDelays.end(), fits);
    return row == kUsualDelays.end() ? 0 : row->frames;
}

}  // namespace media
