// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace media {

/** How samples lie in bytes that no container describes. */
struct RawFormat {
    std::string samples;  ///< FFmpeg's name: "s16le"
    int rate = 0;         ///< Hz
    int channels = 0;
    int bytesPerSample = 0;

    std::int64_t bytesPerFrame() const { return std::int64_t{channels} * bytesPerSample; }
};

/** Reads "SAMPLES:RATE:CHANNELS", as "s16le:44100:2": samples u8, s8, or s16, s24, s32, f32, f64
 *  with le or be behind; 1,000 to 1,536,000 Hz; 1 to 8 channels. Nothing for any other text. */
std::optional<RawFormat> parseRawFormat(const std::string& text);

}  // namespace media
