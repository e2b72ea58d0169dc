// SPDX-License-Identifier: MIT
#include "media/TrackDecoder.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "base/errors.h"
#include "media/StereoChain.h"
#include "media/end/declaredEnd.h"
#include "media/end/declaredFrames.h"
#include "media/end/packetLength.h"

namespace media {

namespace {

// Some formats include the encoder's delay and padding in the declared length, others do not; both
// stay well below this.
constexpr double kDelayAndPaddingSeconds = 0.2;

// If the file still holds this share of the bytes that the missing time would take, its end is
// damaged; with less, it is cut off.
constexpr double kLeastShareOfEnd = 0.5;

// A tag behind the last box takes less than this part of a file.
constexpr std::int64_t kMostForeign = 100;

// The missing part may have had this many times the bit rate of the rest.
constexpr double kMostUneven = 2.0;

// In seconds, where the declared length sets no limit.
constexpr double kLongestLostBeginning = 60.0;

constexpr AVRational perSecond(int rate) {
    return {1, rate};
}

}  // namespace

TrackDecoder::TrackDecoder(const std::string& path)
    : input_(path), container_(input_), delay_(container_, input_),
      decoder_(container_.stream(), delay_), packets_(container_, input_),
      timeline_(packets_.tick()), packet_(makePacket()), frame_(makeFrame()) {
    format_.container = container_.format();
    format_.codec = decoder_.codec();
    format_.tags = container_.tags();
}

void TrackDecoder::run(TrackSink& sink) {
    StereoChain chain(sink);
    run(chain);
}

void TrackDecoder::run(FrameChain& chain) {
    while (step(chain)) {
    }
}

bool TrackDecoder::step(FrameChain& chain) {
    if (!packets_.next(*packet_)) {
        finish(chain);
        return false;
    }
    if (tally_.packets == 0) delay_.look(*packet_);
    decode(packet_.get(), chain);
    av_packet_unref(packet_.get());
    return true;
}

void TrackDecoder::finish(FrameChain& chain) {
    input_.requireReadable();
    tally_.readFailure = container_.failure();
    decode(nullptr, chain);
    fillEnd(chain);
    chain.finish();
    tally_.damagedPackets += container_.damagedPages() + (hasForeignRest() ? 1 : 0);
    tally_.repeatedPackets = packets_.repeatedPackets() + container_.repeatedPages();
    format_.sessionRate = chain.outputRate();
}

void TrackDecoder::decode(const AVPacket* packet, FrameChain& chain) {
    if (packet != nullptr) {
        ++tally_.packets;
        tally_.isLastPacketDamaged = false;
        tally_.isLastPacketIncomplete = isIncomplete(*packet);
    }
    if (!decoder_.send(packet)) noteDamage(packet);
    for (;;) {
        const auto outcome = decoder_.receive(*frame_);
        if (outcome == StreamDecoder::Outcome::needsPacket) return;
        if (outcome == StreamDecoder::Outcome::damaged) return noteDamage(packet);
        deliver(*frame_, chain);
    }
}

bool TrackDecoder::isIncomplete(const AVPacket& packet) const {
    // A WAV written into a pipe states no length, so its last packet always looks incomplete.
    if (container_.isFormat("wav")) return false;
    if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) return true;
    const std::span<const std::uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
    if (!tellsPacketLengths()) return false;
    const auto length =
        container_.isFormat("mp3") ? mpegAudioPacketLength(bytes) : adtsPacketLength(bytes);
    return length && *length > bytes.size();
}

bool TrackDecoder::tellsPacketLengths() const {
    return container_.isFormat("mp3") || container_.isFormat("aac");
}

void TrackDecoder::noteDamage(const AVPacket* packet) {
    if (packet == nullptr || tally_.isLastPacketDamaged) return;
    tally_.isLastPacketDamaged = true;
    ++pendingDamage_.packets;
    pendingDamage_.duration += packet->duration;
}

/** Damage counts once something after it decodes; at the end of a file it is a foreign tag, or the
 *  file was cut off.
 *  @return frames of silence; below 0, frames whose time has passed */
std::int64_t TrackDecoder::missingBefore(const AVFrame& frame) {
    const PendingDamage damage = std::exchange(pendingDamage_, {});
    tally_.damagedPackets += damage.packets;
    isAlarmed_ |= packets_.takeAlarm() || damage.packets > 0;
    const AVRational timeBase = container_.stream().time_base;
    if (!packets_.haveTimes())
        return std::max<std::int64_t>(
            0, av_rescale_q(damage.duration, timeBase, perSecond(frame.sample_rate)));
    if (frame.pts == AV_NOPTS_VALUE) return 0;
    const double seconds = static_cast<double>(frame.pts) * packets_.tick();
    return timeline_.place(seconds, frame, std::exchange(isAlarmed_, false));
}

void TrackDecoder::keepTime(std::int64_t missing, const AVFrame& frame, FrameChain& chain) {
    if (missing > 0) fillGap(missing, frame.sample_rate, chain);
    if (missing < 0) chain.dropFrames(std::min<std::int64_t>(-missing, frame.nb_samples));
}

void TrackDecoder::fillGap(std::int64_t frames, int rate, FrameChain& chain) {
    if (chain.trackRate() == 0) return;
    chain.putSilence(frames);
    const double start = tally_.seconds;
    tally_.frames += frames;
    tally_.seconds += static_cast<double>(frames) / rate;
    const double length = tally_.seconds - start;
    if (!tally_.gaps.empty() && tally_.gaps.back().start + tally_.gaps.back().length == start)
        tally_.gaps.back().length += length;
    else
        tally_.gaps.push_back({start, length});
}

void TrackDecoder::deliver(AVFrame& frame, FrameChain& chain) {
    dropPadding(frame);
    if (frame.nb_samples <= 0) return;
    if (tally_.frames == 0) begin(frame, chain);
    if (frame.sample_rate != format_.trackRate || frame.ch_layout.nb_channels != format_.channels)
        format_.changes = true;
    const std::int64_t missing = missingBefore(frame);
    keepTime(missing, frame, chain);
    const std::int64_t taken =
        frame.nb_samples + std::clamp<std::int64_t>(missing, -frame.nb_samples, 0);
    tally_.frames += taken;
    tally_.seconds += static_cast<double>(taken) / frame.sample_rate;
    timeline_.advance(taken, frame.sample_rate);
    decodedEnd_ = packets_.endPosition();
    chain.put(frame);
}

void TrackDecoder::begin(const AVFrame& frame, FrameChain& chain) {
    format_.channels = frame.ch_layout.nb_channels;
    format_.trackRate = frame.sample_rate;
    const std::int64_t dropped = delay_.framesToDrop(frame.nb_samples, frame.sample_rate);
    const std::int64_t missing = missingAtBeginning(frame);
    chain.begin(frame);
    droppedFrames_ = dropped + delay_.framesDroppedByFfmpeg(frame);
    chain.dropFrames(std::max<std::int64_t>(0, dropped - missing));
    if (missing > dropped) fillGap(missing - dropped, frame.sample_rate, chain);
    if (const auto frames = media::declaredFrames(container_, input_, frame.sample_rate))
        declaredFrames_ = *frames - dropped;
}

/** Frames lost before the first decoded one. A recording may begin at any time, so a late start is
 *  a loss only where damage was found, and in FLAC, which counts its samples from 0. */
std::int64_t TrackDecoder::missingAtBeginning(const AVFrame& frame) const {
    const bool isDamaged = pendingDamage_.packets > 0 || container_.lacksBeginning();
    if (!isDamaged && !container_.isFormat("flac")) return 0;
    if (!packets_.haveTimes() || frame.pts == AV_NOPTS_VALUE) return 0;
    const double late = static_cast<double>(frame.pts) * packets_.tick() - secondsOfBeginning();
    const double most = std::max(kLongestLostBeginning, declaredSeconds().value_or(0.0));
    if (!(late > 0.5 * frame.nb_samples / frame.sample_rate) || late > most) return 0;
    return std::llround(late * frame.sample_rate);
}

/** The time of the track's first frame on the time scale of its packets. */
double TrackDecoder::secondsOfBeginning() const {
    const AVCodecParameters& codec = *container_.stream().codecpar;
    if (container_.isReadByPages())
        return codec.codec_id == AV_CODEC_ID_OPUS ? codec.initial_padding * packets_.tick() : 0.0;
    if (container_.isFormat("flac") || container_.isFormat("matroska")) return 0.0;
    return static_cast<double>(std::max<std::int64_t>(0, packets_.first())) * packets_.tick();
}

double TrackDecoder::shareRead() const {
    return static_cast<double>(avio_tell(input_.context())) / static_cast<double>(input_.size());
}

/** MP4 states the end of the music only as a time, and FFmpeg returns the whole last packet. */
void TrackDecoder::dropPadding(AVFrame& frame) const {
    const AVStream& stream = container_.stream();
    if (!container_.isFormat("mp4") || !container_.declaredSeconds() || frame.pts == AV_NOPTS_VALUE)
        return;
    if (frame.sample_rate <= 0) return;
    const std::int64_t start = stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time;
    const std::int64_t remaining = start + stream.duration - frame.pts;
    const std::int64_t frames =
        av_rescale_q(remaining, stream.time_base, perSecond(frame.sample_rate));
    frame.nb_samples = static_cast<int>(std::clamp<std::int64_t>(frames, 0, frame.nb_samples));
}

/** A track that ends in damage keeps its full length. */
void TrackDecoder::fillEnd(FrameChain& chain) {
    if (!isShorterThanDeclared() || !declaredFrames_ || format_.changes) return;
    const std::int64_t missing = *declaredFrames_ - tally_.frames;
    if (missing <= 0 || !isEndDamaged(static_cast<double>(missing) / format_.trackRate)) return;
    tally_.damagedPackets += std::exchange(pendingDamage_, {}).packets;
    fillGap(missing, format_.trackRate, chain);
    tally_.isLastPacketDamaged = false;
    tally_.isLastPacketIncomplete = false;
}

/** Whether the boxes of an MP4 file end long before the file: one of them is damaged, and what
 *  follows it is unknown. */
bool TrackDecoder::hasForeignRest() const {
    if (!container_.isFormat("mp4")) return false;
    const auto end = declaredEnd(container_, input_);
    return end && input_.size() - *end > input_.size() / kMostForeign;
}

/** Whether the fragments of an MP4 file end in damage. What follows cannot be read, and no fragment
 *  states how much it is. */
bool TrackDecoder::losesItsRest() const {
    return hasForeignRest() && isMp4InFragments(input_);
}

/** Whether the file has bytes where the rest of the track should be; otherwise it was cut off. */
bool TrackDecoder::isEndDamaged(double missingSeconds) const {
    if (decodedEnd_ <= 0 || tally_.seconds <= 0.0) return false;
    if (container_.isFormat("mp4") && declaredEnd(container_, input_) == input_.size()) return true;
    // A single packet that cannot be decoded is the one that a shortened file ends in.
    if (pendingDamage_.packets <= 1 && tally_.isLastPacketDamaged) return false;
    const double perSecond = static_cast<double>(decodedEnd_) / tally_.seconds;
    const auto behind = static_cast<double>(input_.size() - decodedEnd_);
    return behind >= kLeastShareOfEnd * missingSeconds * perSecond;
}

bool TrackDecoder::isCutOff() const {
    if (tally_.isLastPacketIncomplete || container_.endsWithinFrame()) return true;
    // If neither the file nor its packets state a length, errors at the end are the only evidence;
    // if they do, such errors may just as well come from a foreign tag after the music.
    const bool hasTrouble = tally_.readFailure != 0 || tally_.isLastPacketDamaged;
    if (hasTrouble && !tellsPacketLengths() && !declaredSeconds()) return true;
    if (isShorterThanDeclared() || losesItsRest()) return true;
    const auto end = declaredEnd(container_, input_);
    return end && *end > input_.size() && !isMissingInside(*end - input_.size());
}

/** Whether the gaps within the track account for the bytes: what is missing in the middle is not a
 *  missing end. */
bool TrackDecoder::isMissingInside(std::int64_t bytes) const {
    if (decodedEnd_ <= 0) return false;
    double gaps = 0.0;
    for (const base::Gap& gap : tally_.gaps) gaps += gap.length;
    const double missing =
        static_cast<double>(bytes) * tally_.seconds / static_cast<double>(decodedEnd_);
    return gaps > 0.0 && missing <= gaps * kMostUneven;
}

bool TrackDecoder::isShorterThanDeclared() const {
    const auto declared = container_.declaredSeconds();
    if (!declared) return false;
    if (format_.trackRate == 0) return true;
    // FFmpeg takes the last packet of a CAF file for a complete one.
    const bool isExact = decoder_.isLossless() && !container_.isFormat("caf");
    const double tolerance = isExact ? 0.5 / format_.trackRate : kDelayAndPaddingSeconds;
    return tally_.seconds + tolerance < *declared;
}

}  // namespace media
