// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "beatatlas/track.hpp"

namespace catalogue {

/** @name Lists of a result as blobs, and back to the bit
 *  The layouts are described in docs/catalogue.md. An empty list is an empty blob. Decoding throws
 *  DamagedRecord for bytes that no encoder writes.
 *  @{ */

/** @param rate  of the frames, Hz */
std::string encodeBeats(const std::vector<beatatlas::track::Beat>& beats, int rate);
std::vector<beatatlas::track::Beat> decodeBeats(std::string_view blob, int rate);

std::string encodeWave(const std::vector<beatatlas::track::WavePoint>& wave);
std::vector<beatatlas::track::WavePoint> decodeWave(std::string_view blob);
/** @} */

}  // namespace catalogue
