// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "media/FileInput.h"
#include "media/time/PacketQueue.h"

namespace media {

/** Gives the packets of bare streams (MP3, ADTS, AC-3) times by their offsets in the file: between
 *  two packets as many are missing as the bytes there would hold, at the mean length of the packets
 *  around. */
class ByteClock {
public:
    ByteClock(const Container& container, const FileInput& input, PacketQueue& queue);

    /** Sets the packet's time and its offset in the file.
     *  @return false when it is not a packet but bytes between two */
    bool judge(AVPacket& packet);

    bool takeAlarm() { return std::exchange(isAlarmed_, false); }

private:
    std::int64_t ownLength(const AVPacket& packet) const;
    void locate(AVPacket& packet);
    bool standsAt(const AVPacket& packet, std::int64_t offset);
    std::int64_t behindTag(std::int64_t offset) const;
    std::int64_t missingPackets(const AVPacket& packet);
    double meanBehind();

    const FileInput& input_;
    PacketQueue& queue_;
    AVCodecID codec_;
    bool areOffsetsWrong_;  // FFmpeg does not count the bytes it skips
    std::string window_;    // of the file, around the next packet
    std::int64_t windowAt_ = 0;
    std::int64_t end_ = -1;      // where the last packet ended, as it states
    std::int64_t time_ = 0;      // of the next packet
    std::int64_t duration_ = 0;  // of every packet, in the stream's time base
    double meanBytes_ = 0.0;     // of the packets of the last seconds
    bool stateLengths_ = false;  // not those of free bit rate
    bool isAlarmed_ = false;
};

}  // namespace media
