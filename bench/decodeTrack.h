// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace beatatlas::bench {

/** Decodes a file once from its opening to the last frame, as a player does: the default decoder of
 *  FFmpeg's libraries, one thread, samples not converted.
 *  @return frames
 *  @throws std::runtime_error if something fails */
std::int64_t decodeTrack(const std::string& path);

}  // namespace beatatlas::bench
