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

// A page holds at most 65,025 bytes; slower than this music is not coded.
constexpr std::int64_t kLongestPageSeconds = 60;

// Decades at any rate: a later granule is damage.
constexpr std::int64_t kLatestGranule = std::int64_t{1} << 48;

// Longer is no packet of music but a file of nothing else.
constexpr std::size_t kMostPacketBytes = std::size_t{1} << 24;

// The longest run of zeros that a coder leaves; longer ones are what a disk puts in place of what
// it lost.
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
    while (pieces_.empty()) {
        if (!readPage()) return false;
    }
    hand(pieces_.front(), packet);
    pieces_.pop_front();
    return true;
}

void OggPackets::hand(Piece& piece, AVPacket& packet) const {
    const std::size_t size = piece.bytes.size();
    if (av_new_packet(&packet, static_cast<int>(size)) < 0) throw std::bad_alloc();
    std::memcpy(packet.data, piece.bytes.data(), size);
    packet.stream_index = stream_.index;
    packet.pts = packet.dts = piece.time;
    packet.duration = piece.duration;
    packet.pos = pageOffset_;
    if (piece.skippedStart == 0 && piece.skippedEnd == 0) return;
    std::uint8_t* skipped = av_packet_new_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, 10);
    if (skipped == nullptr) throw std::bad_alloc();
    AV_WL32(skipped, static_cast<std::uint32_t>(piece.skippedStart));
    AV_WL32(skipped + 4, static_cast<std::uint32_t>(piece.skippedEnd));
}

bool OggPackets::readPage() {
    const auto page = pages_.next();
    if (!page) return false;
    if (!isOurs(*page)) return true;
    const bool isRepeated =
        line_ >= 0 && page->number < number_ && page->granule >= 0 && page->granule <= line_;
    repeatedPages_ += isRepeated ? 1 : 0;
    if (isRepeated) return true;
    damagedPages_ += page->isSound ? 0 : 1;
    isContiguous_ = page->number == number_ || (!page->isSound && !pages_.hasSkipped());
    number_ = (isContiguous_ ? number_ : page->number) + 1;
    pageOffset_ = page->offset;
    auto pieces = piecesOf(*page);
    if (pieces.empty()) return true;
    const bool isFirst = line_ < 0;
    setTimes(*page, pieces);
    const auto suspects = std::erase_if(pieces, [](const Piece& piece) { return piece.isSuspect; });
    lacksBeginning_ |= isFirst && (!isContiguous_ || suspects > 0);
    pieces_ = std::move(pieces);
    return true;
}

bool OggPackets::isOurs(const OggPage& page) {
    const std::string_view start = startOf(stream_.codecpar->codec_id);
    if (!serial_ && page.isFirst && std::string_view(page.body).starts_with(start))
        serial_ = page.serial;
    // A damaged number among neighbours that are sound is still that of the only stream.
    return serial_ && page.serial == *serial_;
}

std::deque<OggPackets::Piece> OggPackets::piecesOf(const OggPage& page) {
    std::deque<Piece> pieces;
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
            pieces.push_back({std::move(partial_), duration});
        }
        isLost = false;
        partial_.clear();
    }
    hasPartial_ = !page.lacing.empty() && !isLost && partial_.size() <= kMostPacketBytes &&
                  static_cast<unsigned char>(page.lacing.back()) == kSegmentFull;
    return pieces;
}

bool OggPackets::isHeader(const std::string& bytes, const OggPage& page) const {
    switch (stream_.codecpar->codec_id) {
    case AV_CODEC_ID_VORBIS:
        return (static_cast<unsigned char>(bytes[0]) & 1U) != 0 && line_ < 0;
    case AV_CODEC_ID_OPUS:
        return line_ < 0 && std::string_view(bytes).starts_with("Opus");
    case AV_CODEC_ID_FLAC:
        return line_ < 0 && static_cast<unsigned char>(bytes[0]) != 0xFF;
    default:
        return page.granule == 0;
    }
}

/** The header tells it for all packets: the length of a frame, and how many are in a packet. */
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

/** The first block of Vorbis gives no sound; what the second gives before the time 0 is the coder's
 *  delay. */
void OggPackets::trimStart(std::deque<Piece>& pieces) {
    if (pieces.size() > 1 && pieces[1].time < 0) pieces[1].skippedStart = -pieces[1].time;
}

void OggPackets::trimEnd(std::deque<Piece>& pieces, std::int64_t end) {
    while (!pieces.empty() && pieces.back().time >= end) pieces.pop_back();
    if (pieces.empty()) return;
    Piece& last = pieces.back();
    last.skippedEnd = std::max<std::int64_t>(0, last.time + last.duration - end);
}

/** Packets of another kind than those before are wrong bits, when the page's time tells that some
 *  are. */
void OggPackets::markSuspects(std::deque<Piece>& pieces) const {
    for (Piece& piece : pieces) {
        piece.isSuspect = isZeros(piece.bytes);
        if (stream_.codecpar->codec_id == AV_CODEC_ID_OPUS && usualKind_ >= 0)
            piece.isSuspect |= static_cast<unsigned char>(piece.bytes[0]) >> 2 != usualKind_ >> 2;
    }
}

/** How much of Vorbis' first packets is the coder's delay, all of the first page's packets tell
 *  together: with one of them missing the time of those before it is not known. */
void OggPackets::spreadSuspicion(std::deque<Piece>& pieces) {
    const auto last = std::find_if(pieces.rbegin(), pieces.rend(),
                                   [](const Piece& piece) { return piece.isSuspect; });
    for (auto piece = last; piece != pieces.rend(); ++piece) piece->isSuspect = true;
}

bool OggPackets::isVorbis() const {
    return stream_.codecpar->codec_id == AV_CODEC_ID_VORBIS;
}

/** From the page before onward as far as nothing is wrong, and back from the page's end. */
void OggPackets::setTimes(const OggPage& page, std::deque<Piece>& pieces) {
    const std::int64_t length =
        std::accumulate(pieces.begin(), pieces.end(), std::int64_t{0},
                        [](std::int64_t sum, const Piece& piece) { return sum + piece.duration; });
    const bool followsOn = isContiguous_ && line_ >= 0;
    const std::int64_t begin = followsOn ? line_ : std::max<std::int64_t>(0, line_);
    const std::int64_t most = begin + kLongestPageSeconds * stream_.time_base.den;
    std::int64_t end = page.granule;
    const bool isEndKnown =
        end > 0 && end < kLatestGranule &&
        (page.isSound ||
         (end > begin && (followsOn ? end <= most : line_ < 0 || end <= 10 * most)));
    if (!isEndKnown) end = begin + length;
    const bool isTrimmed = page.isLast && followsOn && end < begin + length;
    if (!page.isSound && end != begin + length && !isTrimmed) markSuspects(pieces);
    if (line_ < 0 && isVorbis()) spreadSuspicion(pieces);
    const auto suspect = std::find_if(pieces.begin(), pieces.end(),
                                      [](const Piece& piece) { return piece.isSuspect; });
    const bool beginsHere = isContiguous_ && line_ < 0 && !isVorbis();
    const bool goesForward = (followsOn && (suspect != pieces.end() || isTrimmed)) ||
                             (beginsHere && suspect != pieces.end());
    std::int64_t time = end;
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
        time -= piece->duration;
        piece->time = time;
    }
    time = begin;
    for (auto piece = pieces.begin(); goesForward && piece != suspect; ++piece) {
        piece->time = time;
        time += piece->duration;
    }
    if (line_ < 0 && isVorbis()) trimStart(pieces);
    if (isTrimmed) trimEnd(pieces, end);
    line_ = end;
    if (page.isSound && stream_.codecpar->codec_id == AV_CODEC_ID_OPUS)
        usualKind_ = pieces.empty() ? -1 : static_cast<unsigned char>(pieces.back().bytes[0]);
}

}  // namespace media
