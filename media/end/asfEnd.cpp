// SPDX-License-Identifier: MIT
#include <string_view>

#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::string_view
    kDataObject("\x36\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16);
constexpr std::uint64_t kLeastDataObject = 50;  // the object's own header; live streams write less
constexpr std::uint64_t kLongestObject = 1ULL << 62;

}  // namespace

std::optional<std::int64_t> asfEnd(const FileInput& input) {
    const std::uint64_t headerLength = FileBytes(input, 0, 24).littleEndian(16, 8);
    if (headerLength > static_cast<std::uint64_t>(input.size())) return std::nullopt;
    const auto dataOffset = static_cast<std::int64_t>(headerLength);
    const FileBytes data(input, dataOffset, 24);
    const std::uint64_t length = data.littleEndian(16, 8);
    if (data.text(0, 16) != kDataObject || length <= kLeastDataObject || length > kLongestObject)
        return std::nullopt;
    return dataOffset + static_cast<std::int64_t>(length);
}

}  // namespace media
