// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace media {

class FileInput;

/** Frames before the first one of music, as the packet table of a CAF file states; 0 when it has no
 *  table or the table states none. */
std::int64_t cafPriming(const FileInput& input);

}  // namespace media
