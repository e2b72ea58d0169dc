// SPDX-License-Identifier: MIT
#include "media/time/PacketTimes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace media {

namespace {

// As many packets as the longest usual clusters and fragments have: one damaged time may affect all
// packets of such a group.
constexpr std::size_t kLookAhead = 600;

// Some minutes of the shortest packets.
constexpr std::size_t kMostSeen = 16384;

constexpr std::size_t kPrintBytes = 64;

// In seconds. Where no length is stated, a damaged time must not be taken for a long silence.
constexpr double kLongestUnstated = 60.0;
constexpr double kLongestStepBack = 1.0;
constexpr double kSpareSeconds = 1.0;

// Half a packet: a smaller difference means that none is missing.
constexpr std::int64_t kToleranceDivisor = 2;

// A damaged file may state any time. Sums and differences of a few times within this limit do not
// overflow.
constexpr std::int64_t kLatestTime = std::int64_t{1} << 60;

constexpr std::array<const char*, 9> kTimed = {"flac", "matroska", "mp4", "asf", "mpegts",
                                               "flv",  "wv",       "tta", "caf"};
constexpr std::array<const char*, 4> kByBytes = {"mp3", "aac", "ac3", "eac3"};

std::int64_t withinReach(std::int64_t time) {
    return std::clamp(time, -kLatestTime, kLatestTime);
}

/** ASF was made for these. To packets of other codecs in ASF FFmpeg assigns the times of other
 *  packets. */
bool isWindowsMedia(AVCodecID codec) {
    return codec == AV_CODEC_ID_WMAV1 || codec == AV_CODEC_ID_WMAV2 ||
           codec == AV_CODEC_ID_WMAPRO || codec == AV_CODEC_ID_WMALOSSLESS ||
           codec == AV_CODEC_ID_WMAVOICE;
}

/** FNV-1a hash of the packet's beginning and its length. */
std::uint64_t printOf(const AVPacket& packet) {
    std::uint64_t print = 0xCBF29CE484222325ULL ^ static_cast<std::uint64_t>(packet.size);
    const std::size_t count = std::min(kPrintBytes, static_cast<std::size_t>(packet.size));
    for (std::size_t i = 0; i < count; ++i) print = (print ^ packet.data[i]) * 0x100000001B3ULL;
    return print;
}

}  // namespace

PacketTimes::Clock PacketTimes::clockOf(const Container& container) {
    const auto isOne = [&](const char* name) { return container.isFormat(name); };
    if (container.isReadByPages()) return Clock::times;
    if (container.isFormat("asf") && !isWindowsMedia(container.stream().codecpar->codec_id))
        return Clock::none;
    if (std::any_of(kTimed.begin(), kTimed.end(), isOne)) return Clock::times;
    if (std::any_of(kByBytes.begin(), kByBytes.end(), isOne)) return Clock::bytes;
    return Clock::none;
}

PacketTimes::PacketTimes(Container& container, const FileInput& input)
    : container_(container), queue_(container), clock_(clockOf(container)),
      tick_(av_q2d(container.stream().time_base)) {
    if (clock_ == Clock::bytes) bytes_.emplace(container, input, queue_);
}

bool PacketTimes::next(AVPacket& packet) {
    while (queue_.next(packet)) {
        const bool isTaken = bytes_ ? bytes_->judge(packet) : judge(packet);
        if (bytes_ && bytes_->takeAlarm()) isAlarmed_ = true;
        if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) isAlarmed_ = true;
        if (packet.pos >= 0) endPosition_ = std::max(endPosition_, packet.pos + packet.size);
        if (isTaken) return true;
        isAlarmed_ = true;
        av_packet_unref(&packet);
    }
    return false;
}

std::int64_t PacketTimes::duration(const AVPacket& packet) const {
    return packet.duration > 0 ? withinReach(packet.duration) : usual_;
}

std::int64_t PacketTimes::tolerance(const AVPacket& packet) const {
    return std::max<std::int64_t>(2, duration(packet) / kToleranceDivisor);
}

/** @return false when the packet is to be left out */
bool PacketTimes::judge(AVPacket& packet) {
    if (clock_ == Clock::none || packet.pts == AV_NOPTS_VALUE) {
        if (hasLine_) line_ = withinReach(line_ + duration(packet));
        return true;
    }
    packet.pts = timeOf(packet);
    if (!hasLine_) {
        hasLine_ = true;
        first_ = packet.pts;
    } else if (usual_ == 0) {
        // The first packet of some formats has no duration, so no time was expected for this one.
        usual_ = std::clamp<std::int64_t>(packet.pts - line_, 0, kLatestTime);
    } else if (std::abs(packet.pts - line_) > tolerance(packet)) {
        if (!judgeJump(packet)) return false;
    }
    follow(packet);
    return true;
}

void PacketTimes::follow(const AVPacket& packet) {
    repeatedTo_.reset();
    usual_ = duration(packet);
    line_ = withinReach(packet.pts + usual_);
    while (!seen_.empty() && seen_.back().time > packet.pts) seen_.pop_back();
    seen_.push_back({packet.pts, printOf(packet)});
    if (seen_.size() > kMostSeen) seen_.pop_front();
}

bool PacketTimes::judgeJump(AVPacket& packet) {
    if (packet.pts < line_ && (goesOnRepeating(packet) || beginsRepeating(packet))) {
        repeatedTo_ = packet.pts + duration(packet);
        ++repeatedPackets_;
        return false;
    }
    // Times that jitter from packet to packet, as in live recordings, are not a sign of damage.
    const bool isAmiss = !returnsToLine(packet);
    isAlarmed_ |= isAmiss;
    if (!isAmiss || !isSharedByNext(packet)) {
        packet.pts = line_;
    } else if (packet.pts < line_ ? !isSmallStepBack(packet) : !isPlausible(packet.pts)) {
        // Another recording begins: in joined files the times start again.
        shift_ = withinReach(shift_ + line_ - packet.pts);
        packet.pts = line_;
    }
    return true;
}

/** The packet's time on the time scale of the first recording. */
std::int64_t PacketTimes::timeOf(const AVPacket& packet) const {
    return withinReach(withinReach(packet.pts) + shift_);
}

/** Joined recordings may both begin with the same silence, or be the same one twice: packets that
 *  start at the first time again, or are mostly followed by new ones, are another recording. */
bool PacketTimes::beginsRepeating(const AVPacket& packet) {
    if (packet.pts <= first_ + tolerance(packet) || !isRepeated(packet.pts, packet)) return false;
    std::ptrdiff_t repeated = 0;
    std::ptrdiff_t others = 0;
    for (const PacketPointer& later : queue_.lookAhead(kLookAhead)) {
        if (later->pts == AV_NOPTS_VALUE) continue;
        if (timeOf(*later) >= line_) break;
        ++(isRepeated(timeOf(*later), *later) ? repeated : others);
    }
    return repeated >= others;
}

bool PacketTimes::isRepeated(std::int64_t time, const AVPacket& packet) const {
    const std::int64_t from = time - tolerance(packet);
    auto seen = std::lower_bound(seen_.begin(), seen_.end(), from,
                                 [](const Seen& a, std::int64_t least) { return a.time < least; });
    const std::uint64_t print = printOf(packet);
    for (; seen != seen_.end() && seen->time <= time + tolerance(packet); ++seen) {
        if (seen->print == print) return true;
    }
    return false;
}

/** Whether a packet follows on repeated ones but differs from the original: one of the two is
 *  damaged. */
bool PacketTimes::goesOnRepeating(const AVPacket& packet) const {
    return repeatedTo_ && std::abs(packet.pts - *repeatedTo_) <= tolerance(packet);
}

/** Fragments of a damaged packet are taken for packets until the next stated time. */
bool PacketTimes::isSmallStepBack(const AVPacket& packet) const {
    return static_cast<double>(line_ - packet.pts) * tick_ <= kLongestStepBack;
}

/** Whether a later packet has the time it would have if nothing were missing here. */
bool PacketTimes::returnsToLine(const AVPacket& packet) {
    std::int64_t line = line_ + duration(packet);
    for (const PacketPointer& later : queue_.lookAhead(kLookAhead)) {
        if (later->pts != AV_NOPTS_VALUE && std::abs(timeOf(*later) - line) <= tolerance(*later))
            return true;
        line = withinReach(line + duration(*later));
    }
    return false;
}

bool PacketTimes::isSharedByNext(const AVPacket& packet) {
    const auto& later = queue_.lookAhead(kLookAhead);
    if (later.empty() || later.front()->pts == AV_NOPTS_VALUE) return true;
    const std::int64_t expected = packet.pts + duration(packet);
    return std::abs(timeOf(*later.front()) - expected) <= 2 * tolerance(packet);
}

bool PacketTimes::isPlausible(std::int64_t time) const {
    const auto declared = container_.declaredSeconds();
    if (declared) return static_cast<double>(time - first_) * tick_ <= *declared + kSpareSeconds;
    return static_cast<double>(time - line_) * tick_ <= kLongestUnstated;
}

}  // namespace media
