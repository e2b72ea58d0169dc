// SPDX-License-Identifier: MIT
#include "media/ogg/OggPackets.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace media {

namespace {

constexpr int kSegmentFull = 255;

// A page holds at most 65,025 bytes; no coder needs so few for more time.
constexpr std::int64_t kLongestPageSeconds = 60;

// Decades at any rate: a later granule is damage.
constexpr std::int64_t kLatestGranule = std::int64_t{1} << 48;

// A longer packet is not music: such a file has no other content.
constexpr std::size_t kMostPacketBytes = std::size_t{1} << 24;

// A coder leaves shorter runs of zeros only; longer ones stand where a disk lost data.
constexpr std::size_t kLeastZeros = 16;

std::string_view startOf(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_VORBIS:
        return "\x01vorbis";
    case AV_CODEC_ID_OPUS:
        return "OpusHead";
    case AV_CODEC_ID_FLAC:
        return "\x7F"
               "FLAC";
    case AV_CODEC_ID_SPEEX:
        return "Speex   ";
    default:
        return {};
    }
}

bool isZeros(const std::string& bytes) {
    return bytes.size() >= kLeastZeros && bytes.find_first_not_of('\0') == std::string::npos;
}

}  // namespace

OggPackets::OggPackets(const FileInput& input, const AVStream& stream)
    : pages_(input), stream_(stream), parser_(av_parser_init(stream.codecpar->codec_id)),
      codec_(avcodec_alloc_context3(nullptr)) {
    if (codec_ != nullptr) avcodec_parameters_to_context(codec_, stream.codecpar);
    if (parser_ != nullptr) parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

OggPackets::~OggPackets() {
    if (parser_ != nullptr) av_parser_close(parser_);
    avcodec_free_context(&codec_);
}

bool OggPackets::knows(AVCodecID codec) {
    return !startOf(codec).empty();
}

bool OggPackets::next(AVPacket& packet) {
    while (packets_.empty()) {
        if (!readPage()) return false;
    }
    fill(packet, packets_.front());
    packets_.pop_front();
    return true;
}

void OggPackets::fill(AVPacket& out, const Packet& packet) const {
    const std::size_t size = packet.bytes.size();
    if (av_new_packet(&out, static_cast<int>(size)) < 0) throw std::bad_alloc();
    std::memcpy(out.data, packet.bytes.data(), size);
    out.stream_index = stream_.index;
    out.pts = out.dts = packet.time;
    out.duration = packet.duration;
    out.pos = pageOffset_;
    if (packet.skippedStart == 0 && packet.skippedEnd == 0) return;
    std::uint8_t* skipped = av_packet_new_side_data(&out, AV_PKT_DATA_SKIP_SAMPLES, 10);
    if (skipped == nullptr) throw std::bad_alloc();
    AV_WL32(skipped, static_cast<std::uint32_t>(packet.skippedStart));
    AV_WL32(skipped + 4, static_cast<std::uint32_t>(packet.skippedEnd));
}

bool OggPackets::readPage() {
    const auto page = pages_.next();
    if (!page) return false;
    if (!isOurs(*page)) return true;
    const bool isRepeated = lastGranule_ >= 0 && page->number < number_ && page->granule >= 0 &&
                            page->granule <= lastGranule_;
    repeatedPages_ += isRepeated ? 1 : 0;
    if (isRepeated) return true;
    damagedPages_ += page->isSound ? 0 : 1;
    isContiguous_ = page->number == number_ || (!page->isSound && !pages_.hasSkipped());
    number_ = (isContiguous_ ? number_ : page->number) + 1;
    pageOffset_ = page->offset;
    auto packets = packetsOf(*page);
    if (packets.empty()) return true;
    const bool isFirst = isFirstPage();
    setTimes(*page, packets);
    const auto suspects =
        std::erase_if(packets, [](const Packet& packet) { return packet.isSuspect; });
    lacksBeginning_ |= isFirst && (!isContiguous_ || suspects > 0);
    packets_ = std::move(packets);
    return true;
}

bool OggPackets::isOurs(const OggPage& page) {
    const std::string_view start = startOf(stream_.codecpar->codec_id);
    if (!serial_ && page.isFirst && std::string_view(page.body).starts_with(start))
        serial_ = page.serial;
    // Pages of other streams do not count.
    return serial_ && page.serial == *serial_;
}

std::deque<OggPackets::Packet> OggPackets::packetsOf(const OggPage& page) {
    std::deque<Packet> packets;
    if (!page.isContinued || !isContiguous_) hasPartial_ = false;
    bool isLost = page.isContinued && !hasPartial_;
    if (!hasPartial_) partial_.clear();
    std::size_t at = 0;
    for (const char value : page.lacing) {
        const auto length = static_cast<std::size_t>(static_cast<unsigned char>(value));
        partial_.append(page.body, at, length);
        at += length;
        if (length == kSegmentFull) continue;
        if (!isLost && !partial_.empty() && !isHeader(partial_, page)) {
            const std::int64_t duration = durationOf(partial_);
            packets.push_back({std::move(partial_), duration});
        }
        isLost = false;
        partial_.clear();
    }
    hasPartial_ = !page.lacing.empty() && !isLost && partial_.size() <= kMostPacketBytes &&
                  static_cast<unsigned char>(page.lacing.back()) == kSegmentFull;
    return packets;
}

bool OggPackets::isHeader(const std::string& bytes, const OggPage& page) const {
    switch (stream_.codecpar->codec_id) {
    case AV_CODEC_ID_VORBIS:
        return (static_cast<unsigned char>(bytes[0]) & 1U) != 0 && isFirstPage();
    case AV_CODEC_ID_OPUS:
        return isFirstPage() && std::string_view(bytes).starts_with("Opus");
    case AV_CODEC_ID_FLAC:
        return isFirstPage() && static_cast<unsigned char>(bytes[0]) != 0xFF;
    default:
        return page.granule == 0;
    }
}

/** The header states it for all packets: the length of a frame, and how many are in a packet. */
std::int64_t OggPackets::speexDuration() const {
    const AVCodecParameters& codec = *stream_.codecpar;
    if (codec.extradata_size < 68) return 0;
    const std::int64_t frame = AV_RL32(codec.extradata + 56);
    const std::int64_t frames = AV_RL32(codec.extradata + 64);
    return std::clamp<std::int64_t>(frame, 0, 10000) * std::clamp<std::int64_t>(frames, 1, 100);
}

std::int64_t OggPackets::durationOf(const std::string& bytes) {
    if (stream_.codecpar->codec_id == AV_CODEC_ID_SPEEX) return speexDuration();
    if (parser_ == nullptr || codec_ == nullptr) return 0;
    std::string padded = bytes;
    padded.append(AV_INPUT_BUFFER_PADDING_SIZE, '\0');
    std::uint8_t* out = nullptr;
    int size = 0;
    parser_->duration = 0;
    av_parser_parse2(parser_, codec_, &out, &size,
                     reinterpret_cast<const std::uint8_t*>(padded.data()),
                     static_cast<int>(bytes.size()), AV_NOPTS_VALUE, AV_NOPTS_VALUE, -1);
    return std::max(0, parser_->duration);
}

/** The first packet of Vorbis yields no sound; what the second yields before time 0 is the coder's
 *  delay. */
void OggPackets::trimStart(std::deque<Packet>& packets) {
    if (packets.size() > 1 && packets[1].time < 0) packets[1].skippedStart = -packets[1].time;
}

void OggPackets::trimEnd(std::deque<Packet>& packets, std::int64_t end) {
    while (!packets.empty() && packets.back().time >= end) packets.pop_back();
    if (packets.empty()) return;
    Packet& last = packets.back();
    last.skippedEnd = std::max<std::int64_t>(0, last.time + last.duration - end);
}

/** Marks the packets of another kind than those before. Called when the page's time shows that some
 *  bits are wrong. */
void OggPackets::markSuspects(std::deque<Packet>& packets) const {
    for (Packet& packet : packets) {
        packet.isSuspect = isZeros(packet.bytes);
        if (stream_.codecpar->codec_id == AV_CODEC_ID_OPUS && usualKind_ >= 0)
            packet.isSuspect |= static_cast<unsigned char>(packet.bytes[0]) >> 2 != usualKind_ >> 2;
    }
}

/** How much of Vorbis' first packets is the coder's delay follows from all packets of the first page
 *  together: if one is missing, the time of those before it is not known. */
void OggPackets::spreadSuspicion(std::deque<Packet>& packets) {
    const auto last = std::find_if(packets.rbegin(), packets.rend(),
                                   [](const Packet& packet) { return packet.isSuspect; });
    for (auto packet = last; packet != packets.rend(); ++packet) packet->isSuspect = true;
}

bool OggPackets::isVorbis() const {
    return stream_.codecpar->codec_id == AV_CODEC_ID_VORBIS;
}

std::int64_t OggPackets::totalDuration(const std::deque<Packet>& packets) {
    return std::accumulate(
        packets.begin(), packets.end(), std::int64_t{0},
        [](std::int64_t sum, const Packet& packet) { return sum + packet.duration; });
}

/** Whether the granule of a page can be the end of its packets, which begin at `begin`. */
bool OggPackets::isEndCredible(const OggPage& page, std::int64_t begin) const {
    const std::int64_t end = page.granule;
    if (end <= 0 || end >= kLatestGranule) return false;
    if (page.isSound) return true;
    const std::int64_t most = begin + kLongestPageSeconds * stream_.time_base.den;
    if (followsOn()) return end > begin && end <= most;
    return end > begin && (isFirstPage() || end <= 10 * most);
}

void OggPackets::setTimesBackward(std::deque<Packet>& packets, std::int64_t end) {
    for (auto packet = packets.rbegin(); packet != packets.rend(); ++packet) {
        end -= packet->duration;
        packet->time = end;
    }
}

/** As far as the first suspect, whose duration may be wrong. */
void OggPackets::setTimesForward(std::deque<Packet>& packets, std::int64_t begin) {
    for (Packet& packet : packets) {
        if (packet.isSuspect) return;
        packet.time = begin;
        begin += packet.duration;
    }
}

/** From the previous page forward as long as nothing is wrong, and backward from the page's end. */
void OggPackets::setTimes(const OggPage& page, std::deque<Packet>& packets) {
    const std::int64_t begin = std::max<std::int64_t>(0, lastGranule_);
    const std::int64_t fullEnd = begin + totalDuration(packets);
    const std::int64_t end = isEndCredible(page, begin) ? page.granule : fullEnd;
    const bool isTrimmed = page.isLast && followsOn() && end < fullEnd;
    if (!page.isSound && end != fullEnd && !isTrimmed) markSuspects(packets);
    const bool isVorbisStart = isFirstPage() && isVorbis();
    if (isVorbisStart) spreadSuspicion(packets);
    setTimesBackward(packets, end);
    const bool hasSuspect = std::any_of(packets.begin(), packets.end(),
                                        [](const Packet& packet) { return packet.isSuspect; });
    const bool isBeginKnown = isContiguous_ && !isVorbisStart;
    if (isTrimmed || (isBeginKnown && hasSuspect)) setTimesForward(packets, begin);
    if (isVorbisStart) trimStart(packets);
    if (isTrimmed) trimEnd(packets, end);
    lastGranule_ = end;
    if (page.isSound && stream_.codecpar->codec_id == AV_CODEC_ID_OPUS)
        usualKind_ = packets.empty() ? -1 : static_cast<unsigned char>(packets.back().bytes[0]);
}

}  // namespace media
