// SPDX-License-Identifier: MIT
#include "media/EncoderDelay.h"

#include <string_view>

#include "media/Container.h"

namespace media {

namespace {

// LAME's own 576 frames, and 529 of every MP3 decoder.
constexpr std::int64_t kUsualMp3Delay = 576 + 529;

// One block: the least that overlapping blocks need.
constexpr std::int64_t kUsualAacDelay = 1024;

bool isWmaByFfmpeg(const Container& container) {
    const AVCodecID codec = container.stream().codecpar->codec_id;
    if (codec != AV_CODEC_ID_WMAV1 && codec != AV_CODEC_ID_WMAV2) return false;
    return container.writer().starts_with("Lavf");
}

}  // namespace

EncoderDelay::EncoderDelay(const Container& container) : container_(container) {}

void EncoderDelay::prepare(AVCodecContext& context) const {
    // Windows' encoders begin with two blocks of silence, FFmpeg's with one; the decoder always
    // drops two.
    if (isWmaByFfmpeg(container_)) context.flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
}

void EncoderDelay::look(const AVPacket& first) {
    isTold_ = av_packet_get_side_data(&first, AV_PKT_DATA_SKIP_SAMPLES, nullptr) != nullptr;
}

std::int64_t EncoderDelay::framesToDrop(int blockFrames) const {
    if (isWmaByFfmpeg(container_)) return blockFrames;
    if (isTold_) return 0;
    if (container_.isFormat("mp3")) return kUsualMp3Delay;
    if (container_.isFormat("aac")) return kUsualAacDelay;
    return 0;
}

}  // namespace media
