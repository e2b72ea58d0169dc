// SPDX-License-Identifier: MIT
#include "media/end/packetLength.h"

#include <array>

namespace media {

namespace {

constexpr std::size_t kMpegHeaderBytes = 4;
constexpr std::size_t kAdtsHeaderBytes = 7;

// By the index in the header; 0 for the two that state no rate, "free" and "bad".
constexpr std::array<int, 16> kMpeg1KiloBits = {0,   32,  40,  48,  56,  64,  80,  96,
                                                112, 128, 160, 192, 224, 256, 320, 0};
constexpr std::array<int, 16> kLayer2KiloBits = {0,   32,  48,  56,  64,  80,  96,  112,
                                                 128, 160, 192, 224, 256, 320, 384, 0};
constexpr std::array<int, 16> kMpeg2KiloBits = {0,  8,  16, 24,  32,  40,  48,  56,
                                                64, 80, 96, 112, 128, 144, 160, 0};
constexpr std::array<int, 4> kMpeg1Rates = {44100, 48000, 32000, 0};

constexpr int kMpeg25 = 0;
constexpr int kMpeg1 = 3;
constexpr int kLayer3 = 1;
constexpr int kLayer2 = 2;

}  // namespace

std::optional<std::size_t> mpegAudioPacketLength(std::span<const std::uint8_t> packet) {
    if (packet.size() < kMpegHeaderBytes || packet[0] != 0xFF || (packet[1] & 0xE0) != 0xE0)
        return std::nullopt;
    const int version = (packet[1] >> 3) & 3;
    const int layer = (packet[1] >> 1) & 3;
    if (layer != kLayer3 && layer != kLayer2) return std::nullopt;
    const bool isMpeg1 = version == kMpeg1;
    const auto& kiloBitsOf = !isMpeg1           ? kMpeg2KiloBits
                             : layer == kLayer2 ? kLayer2KiloBits
                                                : kMpeg1KiloBits;
    const int kiloBits = kiloBitsOf[packet[2] >> 4];
    const int rate = kMpeg1Rates[(packet[2] >> 2) & 3] / (isMpeg1 ? 1 : version == kMpeg25 ? 4 : 2);
    if (kiloBits == 0 || rate == 0) return std::nullopt;
    // A frame has 1152 samples, in layer III from MPEG-2 on 576. An eighth of them, since the
    // result is in bytes.
    const int samplesPerEighth = isMpeg1 || layer == kLayer2 ? 144 : 72;
    const int padding = (packet[2] >> 1) & 1;
    return static_cast<std::size_t>(samplesPerEighth * kiloBits * 1000 / rate + padding);
}

std::optional<std::size_t> adtsPacketLength(std::span<const std::uint8_t> packet) {
    if (packet.size() < kAdtsHeaderBytes || packet[0] != 0xFF || (packet[1] & 0xF6) != 0xF0)
        return std::nullopt;
    return ((packet[3] & 3U) << 11) | (static_cast<unsigned>(packet[4]) << 3) | (packet[5] >> 5);
}

}  // namespace media
