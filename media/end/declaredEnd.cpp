// SPDX-License-Identifier: MIT
#include "media/end/declaredEnd.h"

#include "media/Container.h"

namespace media {

std::optional<std::int64_t> declaredEnd(const Container& container, const FileInput& input) {
    if (container.isFormat("wav")) return waveEnd(input);
    if (container.isFormat("mp4")) return mp4End(input);
    if (container.isFormat("ogg")) return oggEnd(input);
    if (container.isFormat("asf")) return asfEnd(input);
    if (container.isFormat("mp3")) return mpegAudioEnd(input);
    if (container.isFormat("matroska")) return matroskaEnd(input);
    return std::nullopt;
}

}  // namespace media
