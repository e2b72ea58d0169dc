// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <utility>

#include "media/time/ByteClock.h"
#include "media/time/PacketQueue.h"

namespace media {

/** A stream's packets, with times that can be relied on where a file is damaged.
 *
 *  As long as each packet follows on the one before, nothing is done. Where the times jump, the
 *  packets behind decide: a jump that they share is a stretch that is missing, one that they do not
 *  share is a damaged time. Packets that were there already are left out. In formats that tell no
 *  times the place in the file stands for them (ByteClock). */
class PacketTimes {
public:
    PacketTimes(Container& container, const FileInput& input);

    /** @return false at the end */
    bool next(AVPacket& packet);

    /** Whether the packets' times tell where their sound belongs. */
    bool tellTime() const { return clock_ != Clock::none; }

    /** The shortest time that the packets' times can tell apart, seconds. */
    double tick() const { return tick_; }

    /** Time of the first packet, in ticks. */
    std::int64_t first() const { return first_; }

    /** Whether something was missing or amiss since the last call. */
    bool takeAlarm() { return std::exchange(isAlarmed_, false); }

    std::int64_t repeatedPackets() const { return repeatedPackets_; }

    /** Bytes of the file behind the last packet that was handed out; -1 where that is not known. */
    std::int64_t endPosition() const { return endPosition_; }

private:
    enum class Clock { none, times, bytes };

    /** A packet that was handed out, to be known again. */
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
    std::int64_t line_ = 0;   ///< the time at which the next packet is expected
    std::int64_t first_ = 0;  ///< time of the first packet
    std::int64_t shift_ = 0;  ///< what a new line of times differs by from the first
    std::int64_t usual_ = 0;  ///< duration of the last packet that had one
    std::optional<std::int64_t> repeatedTo_;  ///< within a run of repeated packets: its time
    std::int64_t repeatedPackets_ = 0;
    std::int64_t endPosition_ = -1;
    bool isAlarmed_ = false;
};

}  // namespace media
