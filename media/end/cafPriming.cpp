// SPDX-License-Identifier: MIT
#include "media/end/cafPriming.h"

#include "media/FileInput.h"
#include "media/end/FileBytes.h"

namespace media {

namespace {

constexpr std::int64_t kFileHeaderBytes = 8;
constexpr std::int64_t kCafChunkHeaderBytes = 12;
constexpr std::size_t kPrimingAt = 16;  // behind the numbers of packets and of valid frames
// A file has one of each kind.
constexpr int kMostChunks = 256;
// More is a sign of damage: encoders look ahead by a few thousand frames.
constexpr std::uint64_t kMostPriming = 1 << 16;

}  // namespace

std::int64_t cafPriming(const FileInput& input) {
    std::int64_t offset = kFileHeaderBytes;
    for (int chunk = 0; chunk < kMostChunks && offset < input.size(); ++chunk) {
        const FileBytes header(input, offset, static_cast<std::size_t>(kCafChunkHeaderBytes));
        const std::uint64_t length = header.bigEndian(4, 8);
        if (header.text(0, 4) == "pakt") {
            const FileBytes table(input, offset + kCafChunkHeaderBytes, kPrimingAt + 4);
            const std::uint64_t priming = table.bigEndian(kPrimingAt, 4);
            return priming <= kMostPriming ? static_cast<std::int64_t>(priming) : 0;
        }
        // All ones: the chunk extends to the end of the file, because the recording was
        // interrupted.
        if (length > static_cast<std::uint64_t>(input.size())) return 0;
        offset += kCafChunkHeaderBytes + static_cast<std::int64_t>(length);
    }
    return 0;
}

}  // namespace media
