// SPDX-License-Identifier: MIT
#include "media/ogg/OggPages.h"

#include <algorithm>
#include <map>
#include <string_view>

extern "C" {
#include <libavutil/crc.h>
#include <libavutil/intreadwrite.h>
}

#include "base/Interrupt.h"

namespace media {

namespace {

constexpr std::size_t kHeaderBytes = 27;
constexpr std::size_t kWindowBytes = std::size_t{1} << 18;
constexpr std::size_t kChecksumAt = 22;
constexpr char kCapture[] = "OggS";
constexpr std::size_t kCaptureBytes = 5;  // including the version, which is 0

constexpr unsigned kContinued = 1;
constexpr unsigned kFirst = 2;
constexpr unsigned kLast = 4;
constexpr unsigned kFlags = 7;

std::uint32_t checksum(const char* page, std::size_t length) {
    static constexpr std::uint8_t kNone[4] = {};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(page);
    const AVCRC* table = av_crc_get_table(AV_CRC_32_IEEE);
    std::uint32_t sum = av_crc(table, 0, bytes, kChecksumAt);
    sum = av_crc(table, sum, kNone, sizeof kNone);
    return av_crc(table, sum, bytes + kChecksumAt + 4, length - kChecksumAt - 4);
}

}  // namespace

/** The bytes at an offset of the file; null when there are fewer. */
const char* OggPages::at(std::int64_t offset, std::size_t count) {
    const auto end = offset + static_cast<std::int64_t>(count);
    if (end > input_.size()) return nullptr;
    if (offset < windowAt_ || end > windowAt_ + static_cast<std::int64_t>(window_.size())) {
        window_.resize(std::max(kWindowBytes, count));
        window_.resize(input_.readAt(offset, window_.data(), window_.size()));
        windowAt_ = offset;
        if (window_.size() < count) return nullptr;
    }
    return window_.data() + (offset - windowAt_);
}

std::optional<OggPage> OggPages::read(std::int64_t offset) {
    const char* header = at(offset, kHeaderBytes);
    if (header == nullptr ||
        std::string_view(header, kCaptureBytes) != std::string_view(kCapture, kCaptureBytes))
        return std::nullopt;
    const auto flags = static_cast<unsigned>(static_cast<unsigned char>(header[5]));
    const std::size_t segments = static_cast<unsigned char>(header[kHeaderBytes - 1]);
    OggPage page;
    page.offset = offset;
    page.granule = static_cast<std::int64_t>(AV_RL64(header + 6));
    page.serial = AV_RL32(header + 14);
    page.number = AV_RL32(header + 18);
    page.isContinued = (flags & kContinued) != 0;
    page.isFirst = (flags & kFirst) != 0;
    page.isLast = (flags & kLast) != 0;
    const char* lacing = at(offset, kHeaderBytes + segments);
    if (lacing == nullptr) return std::nullopt;
    page.lacing.assign(lacing + kHeaderBytes, segments);
    std::size_t length = kHeaderBytes + segments;
    for (const char value : page.lacing) length += static_cast<unsigned char>(value);
    page.end = offset + static_cast<std::int64_t>(length);
    const char* whole = at(offset, length);
    if (whole == nullptr) return std::nullopt;
    page.isSound = checksum(whole, length) == AV_RB32(whole + kChecksumAt);
    page.body.assign(whole + kHeaderBytes + segments, length - kHeaderBytes - segments);
    if (!page.isSound && ((flags & ~kFlags) != 0 || !isFollowed(page.end))) return std::nullopt;
    return page;
}

bool OggPages::isFollowed(std::int64_t end) {
    if (end == input_.size()) return true;
    const char* next = at(end, kCaptureBytes);
    return next != nullptr &&
           std::string_view(next, kCaptureBytes) == std::string_view(kCapture, kCaptureBytes);
}

std::int64_t OggPages::nextCapture(std::int64_t from) {
    while (at(from, kCaptureBytes) != nullptr) {
        const std::size_t found =
            window_.find(kCapture, static_cast<std::size_t>(from - windowAt_), kCaptureBytes);
        if (found != std::string::npos) return windowAt_ + static_cast<std::int64_t>(found);
        from = windowAt_ + static_cast<std::int64_t>(window_.size() - kCaptureBytes + 1);
    }
    return input_.size();
}

std::optional<OggPage> OggPages::next() {
    hasSkipped_ = false;
    while (offset_ < input_.size()) {
        base::Interrupt::check();
        if (auto page = read(offset_)) {
            offset_ = page->end;
            return page;
        }
        hasSkipped_ = true;
        offset_ = nextCapture(offset_ + 1);
    }
    return std::nullopt;
}

OggSurvey surveyOgg(const FileInput& input) {
    OggSurvey survey;
    std::map<std::uint32_t, std::uint32_t> numbers;  // of the next page, by stream
    bool hasData = false;
    OggPages pages(input);
    while (const auto page = pages.next()) {
        const auto known = numbers.find(page->serial);
        survey.isSound = survey.isSound && page->isSound && !pages.hasSkipped() &&
                         (page->isFirst ? known == numbers.end()
                                        : known != numbers.end() && known->second == page->number);
        survey.isChained = survey.isChained || (page->isFirst && page->isSound && hasData);
        hasData = hasData || !page->isFirst;
        if (page->isSound) numbers[page->serial] = page->number + 1;
        survey.hasEnd = page->isLast;
    }
    return survey;
}

}  // namespace media
