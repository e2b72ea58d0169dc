// SPDX-License-Identifier: MIT
#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::size_t kFrameHeaderBytes = 4;
constexpr std::uint64_t kHasFrameCount = 1;
constexpr std::uint64_t kHasByteCount = 2;

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

}  // namespace

std::optional<std::int64_t> mpegAudioEnd(const FileInput& input) {
    const std::int64_t first = skipTags(input);
    const FileBytes frame(input, first, 64);
    const std::size_t at = kFrameHeaderBytes + sideInfoBytes(frame);
    const std::string mark = frame.text(at, 4);
    const std::uint64_t fields = frame.bigEndian(at + 4, 4);
    if ((mark != "Xing" && mark != "Info") || (fields & kHasByteCount) == 0) return std::nullopt;
    const std::size_t countAt = at + ((fields & kHasFrameCount) != 0 ? 12 : 8);
    return first + static_cast<std::int64_t>(frame.bigEndian(countAt, 4));
}

}  // namespace media
