// SPDX-License-Identifier: MIT
#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::int64_t kFirstChunk = 12;
constexpr std::int64_t kChunkHeaderBytes = 8;

// Programs that write into a pipe cannot go back to fill in the length; they write 0, or about 2^31
// or 2^32.
bool isUnknownLength(std::uint64_t bytes) {
    return bytes == 0 || bytes >= 0x7FFF0000U;
}

}  // namespace

std::optional<std::int64_t> waveEnd(const FileInput& input) {
    std::uint64_t longLength = 0;  // of the data chunk, in files above 4 GiB
    for (std::int64_t offset = kFirstChunk; offset < input.size();) {
        const FileBytes header(input, offset, 24);
        const std::string id = header.text(0, 4);
        const std::uint64_t length = header.littleEndian(4, 4);
        if (id == "ds64") longLength = header.littleEndian(16, 8);
        if (id == "data") {
            if (length == 0xFFFFFFFFU && longLength != 0 && longLength < (1ULL << 62)) {
                return offset + kChunkHeaderBytes + static_cast<std::int64_t>(longLength);
            }
            if (isUnknownLength(length)) return std::nullopt;
            return offset + kChunkHeaderBytes + static_cast<std::int64_t>(length);
        }
        offset += kChunkHeaderBytes + static_cast<std::int64_t>(length + length % 2);
    }
    return std::nullopt;
}

}  // namespace media
