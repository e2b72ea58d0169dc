// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <utility>

#include "media/time/ByteClock.h"
#include "media/time/PacketQueue.h"

namespace media {

/** A stream's packets, with times that are reliable even where a file is damaged.
 *
 *  As long as each packet follows the previous one, nothing is done. When the times jump, the later
 *  packets decide: if they continue from the new time, audio is missing; if not, the time is
 *  damaged. Repeated packets are left out. In formats that state no times, the offset in the file
 *  takes their place (ByteClock). */
class PacketTimes {
public:
    PacketTimes(Container& container, const FileInput& input);

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Whether the packets' times show where their sound belongs. */
    bool haveTimes() const { return clock_ != Clock::none; }

    /** The resolution of the packets' times, in seconds. */
    double tick() const { return tick_; }

    /** Time of the first packet, in ticks. */
    std::int64_t first() const { return first_; }

    /** Whether something was missing or wrong since the last call. */
    bool takeAlarm() { return std::exchange(isAlarmed_, false); }

    std::int64_t repeatedPackets() const { return repeatedPackets_; }

    /** Offset in the file at which the last returned packet ends; -1 when unknown. */
    std::int64_t endPosition() const { return endPosition_; }

private:
    enum class Clock { none, times, bytes };

    /** A packet that has been returned, kept to recognise its repetition. */
    struct Seen {
        std::int64_t time;
        std::uint64_t print;
    };

    bool judge(AVPacket& packet);
    bool judgeJump(AVPacket& packet);
    std::int64_t timeOf(const AVPacket& packet) const;
    bool beginsRepeating(const AVPacket& packet);
    bool isRepeated(std::int64_t time, const AVPacket& packet) const;
    bool goesOnRepeating(const AVPacket& packet) const;
    bool isSmallStepBack(const AVPacket& packet) const;
    bool returnsToLine(const AVPacket& packet);
    bool isSharedByNext(const AVPacket& packet);
    bool isPlausible(std::int64_t time) const;
    void follow(const AVPacket& packet);
    std::int64_t duration(const AVPacket& packet) const;
    std::int64_t tolerance(const AVPacket& packet) const;
    static Clock clockOf(const Container& container);

    Container& container_;
    PacketQueue queue_;
    Clock clock_;
    double tick_;
    std::optional<ByteClock> bytes_;
    std::deque<Seen> seen_;
    bool hasLine_ = false;
    std::int64_t line_ = 0;   // the time at which the next packet is expected
    std::int64_t first_ = 0;  // time of the first packet
    std::int64_t shift_ = 0;  // from the times of a joined recording to those of the first
    std::int64_t usual_ = 0;  // duration of the last packet that had one
    // Within a run of repeated packets: the end of the last one.
    std::optional<std::int64_t> repeatedTo_;
    std::int64_t repeatedPackets_ = 0;
    std::int64_t endPosition_ = -1;
    bool isAlarmed_ = false;
};

}  // namespace media
