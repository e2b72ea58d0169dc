// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "media/FileInput.h"
#include "media/time/PacketQueue.h"

namespace media {

/** Gives the packets of bare streams (MP3, ADTS, AC-3) the times that their places in the file
 *  tell: so many packets are missing as the bytes between two of them would hold, by the mean
 *  length of the packets around. */
class ByteClock {
public:
    ByteClock(const Container& container, const FileInput& input, PacketQueue& queue);

    /** Sets the packet's time and its place in the file.
     *  @return false when it is no packet but bytes between two */
    bool judge(AVPacket& packet);

    bool takeAlarm() { return std::exchange(isAlarmed_, false); }

private:
    std::int64_t ownLength(const AVPacket& packet) const;
    void locate(AVPacket& packet);
    bool standsAt(const AVPacket& packet, std::int64_t place);
    std::int64_t behindTag(std::int64_t place) const;
    std::int64_t missingPackets(const AVPacket& packet);
    double meanBehind();

    const FileInput& input_;
    PacketQueue& queue_;
    AVCodecID codec_;
    bool arePlacesOff_;   ///< FFmpeg does not count the bytes it passes over
    std::string window_;  ///< of the file, around the next packet
    std::int64_t windowAt_ = 0;
    std::int64_t end_ = -1;      ///< where the last packet ended by its own account
    std::int64_t time_ = 0;      ///< of the next packet
    std::int64_t duration_ = 0;  ///< of every packet, in the stream's time base
    double meanBytes_ = 0.0;     ///< of the packets of the last seconds
    bool tellsLengths_ = false;  ///< packets of free bit rate do not
    bool isAlarmed_ = false;
};

}  // namespace media
