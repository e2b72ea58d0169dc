// SPDX-License-Identifier: MIT
#include <algorithm>

#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"
#include "media/end/declaredFrames.h"

namespace media {

namespace {

constexpr std::size_t kFrameHeaderBytes = 4;
constexpr std::uint64_t kHasFrameCount = 1;
constexpr std::uint64_t kHasByteCount = 2;
constexpr std::uint64_t kHasSeekTable = 4;
constexpr std::uint64_t kHasQuality = 8;
constexpr std::size_t kSeekTableBytes = 100;
constexpr std::size_t kHeaderFrameBytes = 192;

// After the Xing header LAME and its successors write their name and settings, and 21 bytes further
// two numbers of 12 bits: the frames of silence before the music and after it. Every decoder delays
// by another 529.
constexpr std::size_t kDelaysAt = 21;
constexpr std::int64_t kDecoderDelay = 529;
constexpr std::int64_t kLameDelay = 576;

/** Where the first frame begins, behind any ID3v2 tags. */
std::int64_t skipTags(const FileInput& input) {
    std::int64_t offset = 0;
    for (;;) {
        const FileBytes header(input, offset, 10);
        if (header.text(0, 3) != "ID3") return offset;
        std::int64_t length = 0;
        for (std::size_t i = 6; i < 10; ++i) length = (length << 7) | (header.byte(i) & 0x7F);
        const bool hasFooter = (header.byte(5) & 0x10) != 0;
        offset += 10 + length + (hasFooter ? 10 : 0);
    }
}

/** The Xing header lies where the side information of an ordinary frame would end. */
std::size_t sideInfoBytes(const FileBytes& frame) {
    const bool isMpeg1 = (frame.byte(1) & 0x18) == 0x18;
    const bool isMono = (frame.byte(3) & 0xC0) == 0xC0;
    if (isMpeg1) return isMono ? 17 : 32;
    return isMono ? 9 : 17;
}

/** The first frame, when it contains a Xing or Info header. */
struct HeaderFrame {
    FileBytes bytes;
    std::int64_t offset;   // in the file
    std::size_t fieldsAt;  // of the header's flags
    std::uint64_t fields;

    bool has(std::uint64_t field) const { return (fields & field) != 0; }
};

std::optional<HeaderFrame> findHeader(const FileInput& input) {
    const std::int64_t first = skipTags(input);
    const FileBytes frame(input, first, kHeaderFrameBytes);
    const std::size_t at = kFrameHeaderBytes + sideInfoBytes(frame);
    const std::string mark = frame.text(at, 4);
    if (mark != "Xing" && mark != "Info") return std::nullopt;
    return HeaderFrame{frame, first, at + 4, frame.bigEndian(at + 4, 4)};
}

/** FFmpeg writes 0 or -529 when it does not know the delay; LAME's is assumed then, as in
 *  EncoderDelay. */
std::int64_t encoderDelay(std::int64_t stated, const std::string& writer) {
    const bool isUnknown = writer != "LAME" && (stated == 0 || stated == 4096 - kDecoderDelay);
    return isUnknown ? kLameDelay : stated;
}

}  // namespace

std::optional<std::int64_t> mpegAudioEnd(const FileInput& input) {
    const auto header = findHeader(input);
    if (!header || !header->has(kHasByteCount)) return std::nullopt;
    const std::size_t countAt = header->fieldsAt + (header->has(kHasFrameCount) ? 8 : 4);
    return header->offset + static_cast<std::int64_t>(header->bytes.bigEndian(countAt, 4));
}

std::int64_t mpegAudioPadding(const FileInput& input) {
    const auto header = findHeader(input);
    if (!header) return 0;
    std::size_t at = header->fieldsAt + 4;
    if (header->has(kHasFrameCount)) at += 4;
    if (header->has(kHasByteCount)) at += 4;
    if (header->has(kHasSeekTable)) at += kSeekTableBytes;
    if (header->has(kHasQuality)) at += 4;
    const std::string writer = header->bytes.text(at, 4);
    if (writer != "LAME" && writer != "Lavf" && writer != "Lavc") return 0;
    const auto delays = static_cast<std::int64_t>(header->bytes.bigEndian(at + kDelaysAt, 3));
    const std::int64_t before = encoderDelay(delays >> 12, writer) + kDecoderDelay;
    const std::int64_t behind = (delays & 0xFFF) - kDecoderDelay;
    return before + std::max<std::int64_t>(0, behind);
}

}  // namespace media
