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

/** Reads the packets of a damaged Ogg stream: of every page that can be recognised, with the times
 *  that the pages' granules state. FFmpeg's own reader skips every page in which a single bit is
 *  wrong, which may be a second of music, and shifts what follows by what is missing. */
class OggPackets {
public:
    /** @param stream  of a codec that knows() */
    OggPackets(const FileInput& input, const AVStream& stream);
    ~OggPackets();
    OggPackets(const OggPackets&) = delete;
    OggPackets& operator=(const OggPackets&) = delete;

    /** Whether the duration of a codec's packets can be read from them or from the header. */
    static bool knows(AVCodecID codec);

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Whether something is missing between the headers and the first packet. Valid after next(). */
    bool lacksBeginning() const { return lacksBeginning_; }

    std::int64_t damagedPages() const { return damagedPages_; }
    std::int64_t repeatedPages() const { return repeatedPages_; }

private:
    struct Packet {
        std::string bytes;
        std::int64_t duration = 0;
        bool isSuspect = false;
        std::int64_t time = 0;
        std::int64_t skippedStart = 0;  // samples before the track's first
        std::int64_t skippedEnd = 0;    // samples behind the track's last
    };

    bool readPage();
    bool isOurs(const OggPage& page);
    std::deque<Packet> packetsOf(const OggPage& page);
    bool isHeader(const std::string& bytes, const OggPage& page) const;
    bool isVorbis() const;
    std::int64_t durationOf(const std::string& bytes);
    std::int64_t speexDuration() const;
    static std::int64_t totalDuration(const std::deque<Packet>& packets);
    void setTimes(const OggPage& page, std::deque<Packet>& packets);
    bool isFirstPage() const { return lastGranule_ < 0; }
    bool followsOn() const { return isContiguous_ && !isFirstPage(); }
    bool isEndCredible(const OggPage& page, std::int64_t begin) const;
    static void setTimesBackward(std::deque<Packet>& packets, std::int64_t end);
    static void setTimesForward(std::deque<Packet>& packets, std::int64_t begin);
    void markSuspects(std::deque<Packet>& packets) const;
    static void spreadSuspicion(std::deque<Packet>& packets);
    static void trimStart(std::deque<Packet>& packets);
    static void trimEnd(std::deque<Packet>& packets, std::int64_t end);
    void fill(AVPacket& out, const Packet& packet) const;

    OggPages pages_;
    const AVStream& stream_;
    AVCodecParserContext* parser_ = nullptr;
    AVCodecContext* codec_ = nullptr;
    std::deque<Packet> packets_;
    std::int64_t pageOffset_ = 0;
    std::optional<std::uint32_t> serial_;
    std::string partial_;
    bool hasPartial_ = false;
    bool lacksBeginning_ = false;
    bool isContiguous_ = false;      // no page is missing before the present one
    std::uint32_t number_ = 0;       // of the next page
    std::int64_t lastGranule_ = -1;  // where the last page ended; -1: not known
    std::int64_t damagedPages_ = 0;
    std::int64_t repeatedPages_ = 0;
    int usualKind_ = -1;  // first byte of Opus packets, which states their duration
};

}  // namespace media
