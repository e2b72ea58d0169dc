// SPDX-License-Identifier: MIT
#include "media/time/ByteClock.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string_view>

extern "C" {
#include <libavcodec/ac3_parser.h>
}

#include "media/end/FileBytes.h"
#include "media/end/packetLength.h"

namespace media {

namespace {

constexpr std::size_t kWindowBytes = std::size_t{1} << 16;
constexpr std::size_t kFingerprintBytes = 32;

// Packets of a second or two: the mean length is that around a gap, not that of the whole track.
constexpr std::size_t kPacketsBehind = 64;
constexpr double kMeanShare = 1.0 / 64.0;

std::span<const std::uint8_t> bytesOf(const AVPacket& packet) {
    return {packet.data, static_cast<std::size_t>(packet.size)};
}

/** One packet may contain the frames of several streams. */
std::optional<std::size_t> ac3Length(std::span<const std::uint8_t> bytes) {
    std::size_t all = 0;
    std::uint8_t identification = 0;
    std::uint16_t length = 0;
    while (all < bytes.size() && av_ac3_parse_header(bytes.data() + all, bytes.size() - all,
                                                     &identification, &length) >= 0)
        all += length;
    return all == 0 ? std::nullopt : std::optional(all);
}

}  // namespace

ByteClock::ByteClock(const Container& container, const FileInput& input, PacketQueue& queue)
    : input_(input), queue_(queue), codec_(container.stream().codecpar->codec_id),
      areOffsetsWrong_(container.isFormat("aac")) {}

/** As the packet's own header states it; 0 when it has none. */
std::int64_t ByteClock::ownLength(const AVPacket& packet) const {
    std::optional<std::size_t> length;
    switch (codec_) {
    case AV_CODEC_ID_MP3:
    case AV_CODEC_ID_MP2:
        length = mpegAudioPacketLength(bytesOf(packet));
        break;
    case AV_CODEC_ID_AAC:
        length = adtsPacketLength(bytesOf(packet));
        break;
    default:
        length = ac3Length(bytesOf(packet));
    }
    return length ? static_cast<std::int64_t>(*length) : 0;
}

bool ByteClock::judge(AVPacket& packet) {
    locate(packet);
    const std::int64_t length = ownLength(packet);
    const bool isKnown = length > 0 && length <= packet.size;
    if (length == 0 && stateLengths_) return false;
    stateLengths_ = stateLengths_ || isKnown;
    if (end_ >= 0 && packet.pos > end_) {
        const std::int64_t missing = missingPackets(packet);
        time_ += missing * duration_;
        isAlarmed_ = isAlarmed_ || missing != 0;
    }
    if (duration_ == 0) duration_ = packet.duration;
    packet.pts = time_;
    packet.duration = duration_;
    time_ += duration_;
    const std::int64_t bytes = isKnown ? length : packet.size;
    end_ = packet.pos + bytes;
    const auto size = static_cast<double>(bytes);
    meanBytes_ = meanBytes_ == 0.0 ? size : meanBytes_ + (size - meanBytes_) * kMeanShare;
    return true;
}

/** Finds the packet in the file when the offset that FFmpeg reports is unreliable. The packet has
 *  been read, so it lies before the offset up to which the file has been read. */
void ByteClock::locate(AVPacket& packet) {
    if (!areOffsetsWrong_ || end_ < 0) return;
    packet.pos = end_;
    if (standsAt(packet, end_)) return;
    const std::string_view print(reinterpret_cast<const char*>(packet.data),
                                 std::min<std::size_t>(kFingerprintBytes, packet.size));
    const std::int64_t found = findInFile(input_, print, end_, avio_tell(input_.context()));
    if (found >= 0) packet.pos = found;
}

bool ByteClock::standsAt(const AVPacket& packet, std::int64_t offset) {
    const std::size_t count = std::min<std::size_t>(kFingerprintBytes, packet.size);
    const auto size = static_cast<std::int64_t>(window_.size());
    if (offset < windowAt_ || offset + static_cast<std::int64_t>(count) > windowAt_ + size) {
        window_ = FileBytes(input_, offset, kWindowBytes).text(0, kWindowBytes);
        windowAt_ = offset;
    }
    const auto at = static_cast<std::size_t>(offset - windowAt_);
    return window_.compare(at, count, reinterpret_cast<const char*>(packet.data), count) == 0;
}

/** The offset behind a tag at `offset`: joined files have tags between their packets. */
std::int64_t ByteClock::behindTag(std::int64_t offset) const {
    const FileBytes bytes(input_, offset, 32);
    if (bytes.text(0, 3) == "TAG") return offset + 128;
    if (bytes.text(0, 8) == "APETAGEX")
        return offset + 32 + static_cast<std::int64_t>(bytes.littleEndian(12, 4));
    if (bytes.text(0, 3) != "ID3") return offset;
    std::int64_t length = 0;
    for (std::size_t i = 6; i < 10; ++i) length = (length << 7) | (bytes.byte(i) & 0x7F);
    return offset + 10 + length;
}

std::int64_t ByteClock::missingPackets(const AVPacket& packet) {
    std::int64_t from = end_;
    for (std::int64_t behind = behindTag(from); behind > from; behind = behindTag(from))
        from = behind;
    if (from >= packet.pos) return 0;
    const double mean = (meanBytes_ + meanBehind()) / 2.0;
    return std::llround(static_cast<double>(packet.pos - from) / std::max(1.0, mean));
}

double ByteClock::meanBehind() {
    std::int64_t bytes = 0;
    std::int64_t packets = 0;
    for (const PacketPointer& later : queue_.lookAhead(kPacketsBehind)) {
        const std::int64_t length = ownLength(*later);
        if (length <= 0 || length > later->size) continue;
        bytes += length;
        ++packets;
        if (packets == static_cast<std::int64_t>(kPacketsBehind)) break;
    }
    return packets == 0 ? meanBytes_ : static_cast<double>(bytes) / static_cast<double>(packets);
}

}  // namespace media
