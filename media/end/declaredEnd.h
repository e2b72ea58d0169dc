// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace media {

class Container;
class FileInput;

/** The least size of a file in bytes, as its own structure states; nothing for formats that do not
 *  state it, and for files of unknown length, as streaming writers make them. A smaller file was
 *  cut off, even when everything left in it decodes. */
std::optional<std::int64_t> declaredEnd(const Container& container, const FileInput& input);

/** @name By container
 *  @{ */
/** End of the data chunk. */
std::optional<std::int64_t> waveEnd(const FileInput& input);
/** End of the last box that begins within the file. */
std::optional<std::int64_t> mp4End(const FileInput& input);
/** End of the last page that begins within the file. */
std::optional<std::int64_t> oggEnd(const FileInput& input);
bool isMp4InFragments(const FileInput& input);
/** End of the data object. */
std::optional<std::int64_t> asfEnd(const FileInput& input);
/** From the byte count of the Xing or Info header. */
std::optional<std::int64_t> mpegAudioEnd(const FileInput& input);
/** End of the segment. */
std::optional<std::int64_t> matroskaEnd(const FileInput& input);
/** @} */

}  // namespace media
