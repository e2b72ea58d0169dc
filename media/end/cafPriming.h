// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace media {

class FileInput;

/** Frames before the first one of music, as the packet table of a CAF file tells them; 0 where it
 *  has none or tells none. */
std::int64_t cafPriming(const FileInput& input);

}  // namespace media
