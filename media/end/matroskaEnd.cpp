// SPDX-License-Identifier: MIT
#include <bit>

#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::size_t kIdBytes = 4;
constexpr std::uint64_t kHeaderId = 0x1A45DFA3;
constexpr std::uint64_t kSegmentId = 0x18538067;

/** An element's end; nothing when its length is unknown (all ones), as in live streams. */
std::optional<std::int64_t> elementEnd(const FileInput& input, std::int64_t offset,
                                       std::uint64_t id) {
    const FileBytes header(input, offset, 16);
    if (header.bigEndian(0, kIdBytes) != id || header.byte(kIdBytes) == 0) return std::nullopt;
    // The leading zeros of its first byte state how many bytes the length takes (RFC 8794).
    const auto lengthBytes = static_cast<std::size_t>(std::countl_zero(header.byte(kIdBytes))) + 1;
    const std::uint64_t ones = (1ULL << (7 * lengthBytes)) - 1;
    const std::uint64_t length = header.bigEndian(kIdBytes, lengthBytes) & ones;
    if (length == ones) return std::nullopt;
    return offset + static_cast<std::int64_t>(kIdBytes + lengthBytes + length);
}

}  // namespace

std::optional<std::int64_t> matroskaEnd(const FileInput& input) {
    const auto segment = elementEnd(input, 0, kHeaderId);
    return segment ? elementEnd(input, *segment, kSegmentId) : std::nullopt;
}

}  // namespace media
