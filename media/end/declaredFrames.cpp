// SPDX-License-Identifier: MIT
#include "media/end/declaredFrames.h"

#include <cmath>

#include "media/Container.h"
#include "media/trackLength.h"

namespace media {

namespace {

std::int64_t paddingOf(const Container& container, const FileInput& input) {
    if (container.isFormat("mp3")) return mpegAudioPadding(input);
    // The granules of Ogg include the pre-skip of Opus.
    const AVCodecParameters& codec = *container.stream().codecpar;
    return container.isFormat("ogg") && codec.codec_id == AV_CODEC_ID_OPUS ? codec.initial_padding
                                                                           : 0;
}

}  // namespace

std::optional<std::int64_t> declaredFrames(const Container& container, const FileInput& input,
                                           int rate) {
    const auto seconds = container.declaredSeconds();
    // ASF states milliseconds, and where they start depends on the encoder.
    if (!seconds || container.isFormat("asf")) return std::nullopt;
    const double frames = std::round(*seconds * rate);
    if (!(frames >= 0.0 && frames <= static_cast<double>(kMostFrames))) return std::nullopt;
    return static_cast<std::int64_t>(frames) - paddingOf(container, input);
}

}  // namespace media
