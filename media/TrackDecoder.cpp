// SPDX-License-Identifier: MIT
#include "media/TrackDecoder.h"

#include <algorithm>
#include <span>
#include <utility>

#include "base/errors.h"
#include "media/StereoChain.h"
#include "media/end/declaredEnd.h"
#include "media/end/declaredFrames.h"
#include "media/end/packetLength.h"

namespace media {

namespace {

// Formats count their encoder's delay and padding into the declared length or not; both stay well
// below this.
constexpr double kDelayAndPaddingSeconds = 0.2;

constexpr AVRational perSecond(int rate) {
    return {1, rate};
}

}  // namespace

TrackDecoder::TrackDecoder(const std::string& path)
    : input_(path), container_(input_), delay_(container_, input_), decoder_(container_.stream(), delay_),
      packet_(makePacket()), frame_(makeFrame()) {
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
    if (!container_.next(*packet_)) {
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
    chain.finish();
    format_.trackRate = chain.trackRate();
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
    // A WAV written into a pipe has no length to end at, so its last packet always looks
    // incomplete.
    if (container_.isFormat("wav")) return false;
    if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) return true;
    const std::span<const std::uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
    if (!tellsPacketLengths()) return false;
    const auto length =
        container_.isFormat("mp3") ? mpegLayer3PacketLength(bytes) : adtsPacketLength(bytes);
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

/** Damage counts once something after it decodes; at a file's end it is a foreign tag, or the file
 *  was cut off. */
void TrackDecoder::fillDamage(FrameChain& chain) {
    const PendingDamage damage = std::exchange(pendingDamage_, {});
    tally_.damagedPackets += damage.packets;
    if (chain.trackRate() == 0) return;
    const AVRational timeBase = container_.stream().time_base;
    const std::int64_t frames =
        av_rescale_q(damage.duration, timeBase, perSecond(chain.trackRate()));
    chain.putSilence(frames);
    tally_.frames += frames;
}

void TrackDecoder::deliver(AVFrame& frame, FrameChain& chain) {
    dropPadding(frame);
    if (frame.nb_samples <= 0) return;
    if (tally_.frames == 0) begin(frame, chain);
    fillDamage(chain);
    tally_.frames += frame.nb_samples;
    chain.put(frame);
}

void TrackDecoder::begin(const AVFrame& frame, FrameChain& chain) {
    format_.channels = frame.ch_layout.nb_channels;
    const std::int64_t dropped = delay_.framesToDrop(frame.nb_samples, frame.sample_rate);
    chain.dropFrames(dropped);
    if (const auto frames = media::declaredFrames(container_, input_, frame.sample_rate))
        declaredFrames_ = *frames - dropped;
}

double TrackDecoder::shareRead() const {
    return static_cast<double>(avio_tell(input_.context())) / static_cast<double>(input_.size());
}

/** MP4 tells the end of the music as a time only, and FFmpeg hands out its last packet whole. */
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

bool TrackDecoder::isCutOff() const {
    if (tally_.isLastPacketIncomplete) return true;
    // Where neither the file nor its packets tell a length, trouble at the end is all there is to
    // go by; where they do, it may as well be a foreign tag after the music.
    const bool hasTrouble = tally_.readFailure != 0 || tally_.isLastPacketDamaged;
    if (hasTrouble && !tellsPacketLengths() && !declaredSeconds()) return true;
    const auto end = declaredEnd(container_, input_);
    return (end && *end > input_.size()) || isShorterThanDeclared();
}

bool TrackDecoder::isShorterThanDeclared() const {
    const auto declared = container_.declaredSeconds();
    if (!declared) return false;
    if (format_.trackRate == 0) return true;
    const double rate = format_.trackRate;
    const double tolerance = decoder_.isLossless() ? 0.5 / rate : kDelayAndPaddingSeconds;
    return static_cast<double>(tally_.frames) / rate + tolerance < *declared;
}

}  // namespace media
