// SPDX-License-Identifier: MIT
#include <algorithm>

#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::size_t kHeaderBytes = 27;  // before the table of segment lengths (RFC 3533)
constexpr std::int64_t kLongestPage = 27 + 255 + 255 * 255;

}  // namespace

std::optional<std::int64_t> oggEnd(const FileInput& input) {
    const std::int64_t from = std::max<std::int64_t>(0, input.size() - kLongestPage);
    const FileBytes tail(input, from, static_cast<std::size_t>(kLongestPage));
    const std::size_t page = tail.findLast("OggS");
    if (page == std::string::npos) return std::nullopt;
    const std::size_t segments = tail.byte(page + kHeaderBytes - 1);
    std::size_t length = kHeaderBytes + segments;
    for (std::size_t i = 0; i < segments; ++i) length += tail.byte(page + kHeaderBytes + i);
    return from + static_cast<std::int64_t>(page + length);
}

}  // namespace media
