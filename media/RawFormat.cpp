// SPDX-License-Identifier: MIT
#include "media/RawFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "media/RateConverter.h"

namespace media {

namespace {

struct SampleKind {
    std::string_view name;
    int bytes;
};
constexpr std::array kSampleKinds = {
    SampleKind{"u8", 1},    SampleKind{"s8", 1},    SampleKind{"s16le", 2}, SampleKind{"s16be", 2},
    SampleKind{"s24le", 3}, SampleKind{"s24be", 3}, SampleKind{"s32le", 4}, SampleKind{"s32be", 4},
    SampleKind{"f32le", 4}, SampleKind{"f32be", 4}, SampleKind{"f64le", 8}, SampleKind{"f64be", 8},
};

constexpr int kMostChannels = 8;

std::optional<int> wholeNumber(std::string_view text, int least, int most) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number >= least && number <= most ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<RawFormat> parseRawFormat(const std::string& text) {
    const std::size_t first = text.find(':');
    const std::size_t second = first == std::string::npos ? first : text.find(':', first + 1);
    if (second == std::string::npos) return std::nullopt;
    const std::string_view whole = text;
    const auto kind =
        std::find_if(kSampleKinds.begin(), kSampleKinds.end(),
                     [&](const SampleKind& one) { return one.name == whole.substr(0, first); });
    const auto rate =
        wholeNumber(whole.substr(first + 1, second - first - 1), kLowestRate, kHighestRate);
    const auto channels = wholeNumber(whole.substr(second + 1), 1, kMostChannels);
    if (kind == kSampleKinds.end() || !rate || !channels) return std::nullopt;
    return RawFormat{std::string(kind->name), *rate, *channels, kind->bytes};
}

}  // namespace media
