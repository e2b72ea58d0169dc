// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace media {

class Container;
class FileInput;

/** The byte at which a file must end at the earliest, by what its own structure says; nothing for
 *  formats that do not say it, and for files of unknown length as streaming writers make them. A
 *  file shorter than that was cut off, even when everything left in it decodes. */
std::optional<std::int64_t> declaredEnd(const Container& container, const FileInput& input);

/** @name By container
 *  @{ */
std::optional<std::int64_t> waveEnd(const FileInput& input);  ///< end of the data chunk
std::optional<std::int64_t> mp4End(const FileInput& input);   ///< end of the last box that is begun
std::optional<std::int64_t> oggEnd(const FileInput& input);  ///< end of the last page that is begun
bool isMp4InFragments(const FileInput& input);
std::optional<std::int64_t> asfEnd(const FileInput& input);  ///< end of the data object
std::optional<std::int64_t>
mpegAudioEnd(const FileInput& input);  ///< by the byte count of the Xing or Info header
std::optional<std::int64_t> matroskaEnd(const FileInput& input);  ///< end of the segment
/** @} */

}  // namespace media
