// SPDX-License-Identifier: MIT
#include "output/formats/PeaksExport.h"

#include <nlohmann/json.hpp>

namespace output {

namespace {

constexpr int kVersion = 2;
constexpr std::uint32_t kEightBitFlag = 1;
constexpr int kShortBits = 8;

/** Halves the bits as the format's own program does: cut toward zero. */
int inBits(std::int16_t value, int bits) {
    return bits == kShortBits ? value / 256 : value;
}

void putLittleEndian(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFFU);
}

}  // namespace

void PeaksBinary::add(const TrackReport&, const Peaks* peaks) {
    std::string bytes;
    const auto put = [&](std::size_t value) {
        putLittleEndian(bytes, static_cast<std::uint32_t>(value), 4);
    };
    put(kVersion);
    put(bits_ == kShortBits ? kEightBitFlag : 0);
    put(static_cast<std::size_t>(peaks->rate));
    put(static_cast<std::size_t>(peaks->framesPerPixel));
    put(peaks->pixels());
    put(static_cast<std::size_t>(peaks->channels));
    for (const std::int16_t value : peaks->values)
        putLittleEndian(bytes, static_cast<std::uint32_t>(inBits(value, bits_)), bits_ / 8);
    write_(bytes);
}

void PeaksJson::add(const TrackReport&, const Peaks* peaks) {
    nlohmann::ordered_json document = {{"version", kVersion},
                                       {"channels", peaks->channels},
                                       {"sample_rate", peaks->rate},
                                       {"samples_per_pixel", peaks->framesPerPixel},
                                       {"bits", bits_},
                                       {"length", peaks->pixels()}};
    auto data = nlohmann::ordered_json::array();
    for (const std::int16_t value : peaks->values) data.push_back(inBits(value, bits_));
    document["data"] = std::move(data);
    write_(document.dump() + "\n");
}

}  // namespace output
