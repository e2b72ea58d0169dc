// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace media {

/** The length in bytes that a packet of a bare stream states in its own header; nothing when there
 *  is no such header. A shorter packet was cut off, which the decoders do not report.
 *  @{ */
std::optional<std::size_t> mpegAudioPacketLength(std::span<const std::uint8_t> packet);
std::optional<std::size_t> adtsPacketLength(std::span<const std::uint8_t> packet);
/** @} */

}  // namespace media
