// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "media/ffmpeg.h"
#include "media/ogg/OggPages.h"

namespace media {

/** Reads the packets of a damaged Ogg stream: of every page that can be made out, with the times
 *  that the pages' granules tell. FFmpeg's own reader passes over every page in which a single bit
 *  is wrong, which may be a second of music, and gives what follows the time of what is missing. */
class OggPackets {
public:
    /** @param stream  of a codec that is known here */
    OggPackets(const FileInput& input, const AVStream& stream);
    ~OggPackets();
    OggPackets(const OggPackets&) = delete;
    OggPackets& operator=(const OggPackets&) = delete;

    /** Whether the packets of a codec tell how long they are, or its header does. */
    static bool knows(AVCodecID codec);

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Whether something is missing between the headers and the first packet. After next(). */
    bool lacksBeginning() const { return lacksBeginning_; }

    std::int64_t damagedPages() const { return damagedPages_; }
    std::int64_t repeatedPages() const { return repeatedPages_; }

private:
    struct Piece {
        std::string bytes;
        std::int64_t duration = 0;
        bool isSuspect = false;
        std::int64_t time = 0;
        std::int64_t skippedStart = 0;  ///< samples before the track's first
        std::int64_t skippedEnd = 0;    ///< and behind its last
    };

    bool readPage();
    bool isOurs(const OggPage& page);
    std::deque<Piece> piecesOf(const OggPage& page);
    void setTimes(const OggPage& page, std::deque<Piece>& pieces);
    static void trimStart(std::deque<Piece>& pieces);
    static void trimEnd(std::deque<Piece>& pieces, std::int64_t end);
    static void spreadSuspicion(std::deque<Piece>& pieces);
    bool isVorbis() const;
    void markSuspects(std::deque<Piece>& pieces) const;
    bool isHeader(const std::string& bytes, const OggPage& page) const;
    std::int64_t speexDuration() const;
    std::int64_t durationOf(const std::string& bytes);
    void hand(Piece& piece, AVPacket& packet) const;

    OggPages pages_;
    const AVStream& stream_;
    AVCodecParserContext* parser_ = nullptr;
    AVCodecContext* codec_ = nullptr;
    std::deque<Piece> pieces_;
    std::int64_t pageOffset_ = 0;
    std::optional<std::uint32_t> serial_;
    std::string partial_;
    bool hasPartial_ = false;
    bool lacksBeginning_ = false;
    bool isContiguous_ = false;  ///< no page is missing before the present one
    std::uint32_t number_ = 0;   ///< of the next page
    std::int64_t line_ = -1;     ///< granule at which the last page ended; -1: not known
    std::int64_t damagedPages_ = 0;
    std::int64_t repeatedPages_ = 0;
    int usualKind_ = -1;  ///< first byte of Opus packets, which tells their duration
};

}  // namespace media
