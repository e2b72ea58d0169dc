// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace media {

class Container;
class FileInput;

/** Frames of music as the file states them, without what the encoder added as far as the file
 *  states that; nothing for formats that state no length, or none that is exact to the frame.
 *  @param rate  Hz, of the track */
std::optional<std::int64_t> declaredFrames(const Container& container, const FileInput& input,
                                           int rate);

/** What the encoder's header of an MP3 file adds to the music before and after it, in frames, as
 *  FFmpeg drops it; 0 when there is no such header. */
std::int64_t mpegAudioPadding(const FileInput& input);

}  // namespace media
