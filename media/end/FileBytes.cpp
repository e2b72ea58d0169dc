// SPDX-License-Identifier: MIT
#include "media/end/FileBytes.h"

#include <algorithm>

#include "media/FileInput.h"

namespace media {

FileBytes::FileBytes(const FileInput& input, std::int64_t offset, std::size_t count)
    : bytes_(count, '\0') {
    bytes_.resize(input.readAt(offset, bytes_.data(), count));
}

std::uint8_t FileBytes::byte(std::size_t at) const {
    return at < bytes_.size() ? static_cast<std::uint8_t>(bytes_[at]) : 0;
}

std::uint64_t FileBytes::bigEndian(std::size_t at, std::size_t count) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = (value << 8) | byte(at + i);
    return value;
}

std::uint64_t FileBytes::littleEndian(std::size_t at, std::size_t count) const {
    std::uint64_t value = 0;
    for (std::size_t i = count; i > 0; --i) value = (value << 8) | byte(at + i - 1);
    return value;
}

std::string FileBytes::text(std::size_t at, std::size_t count) const {
    return at < bytes_.size() ? bytes_.substr(at, count) : std::string();
}

std::int64_t findInFile(const FileInput& input, std::string_view text, std::int64_t from,
                        std::int64_t end) {
    constexpr std::size_t kWindow = std::size_t{1} << 16;
    // The windows overlap: the text may lie across the end of one.
    const auto step = static_cast<std::int64_t>(kWindow - text.size());
    for (std::int64_t at = from; at < std::min(end, input.size()); at += step) {
        const std::size_t found = FileBytes(input, at, kWindow).findFirst(text);
        if (found != std::string::npos) return at + static_cast<std::int64_t>(found);
    }
    return -1;
}

}  // namespace media
