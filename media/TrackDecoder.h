// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/TrackSource.h"
#include "media/Container.h"
#include "media/DecodeTally.h"
#include "media/EncoderDelay.h"
#include "media/FileInput.h"
#include "media/FrameChain.h"
#include "media/StreamDecoder.h"
#include "media/TrackSink.h"
#include "media/time/PacketTimes.h"
#include "media/time/Timeline.h"

namespace media {

/** Decodes a track from its first frame of music to its last, once. Another pass takes another
 *  decoder: the same file yields the same samples every time, so no track has to be held in memory,
 *  however long. */
class TrackDecoder {
public:
    /** @throws TrackError when the file holds no audio that can be decoded */
    explicit TrackDecoder(const std::string& path);

    /** Decodes everything that can be decoded. Damage is counted and causes no exception. */
    void run(FrameChain& chain);

    /** One step of run(): the next packet. @return false after the last one, when the chain has
     *  been finished */
    bool step(FrameChain& chain);

    /** The same, folded to stereo at a session's rate. */
    void run(TrackSink& sink);

    /** Frames of music that run() will find at the track's own rate, as the file states it; nothing
     *  when it states no length or no exact one. Known with the first frame of the chain; correct
     *  unless the file states a wrong length. */
    std::optional<std::int64_t> declaredFrames() const { return declaredFrames_; }

    /** How much of the file has been read, 0 to 1. */
    double shareRead() const;

    /** Valid after run(). */
    const DecodeTally& tally() const { return tally_; }
    const base::TrackFormat& format() const { return format_; }

    /** The file's state when it was opened, and whether it is another now. */
    const FileState& fileState() const { return input_.opened(); }
    bool hasFileChanged() const { return input_.hasChanged(); }

    /** What was left out before the first frame of music, see base::TrackSource. */
    std::int64_t droppedFrames() const { return droppedFrames_; }

    /** Length in seconds, as the file states it. */
    std::optional<double> declaredSeconds() const { return container_.declaredSeconds(); }

    /** Sample rate in Hz, as the file states it; 0 when it states none. */
    int declaredRate() const { return container_.stream().codecpar->sample_rate; }

    /** Whether the format marks the end of a file and this file lacks the mark. */
    bool lacksEnd() const { return container_.lacksEnd(); }

    /** Whether the file ends earlier than it states: what was decoded is not the whole track. Valid
     *  after run(). */
    bool isCutOff() const;

private:
    /** Packets that could not be decoded since the last one that could. */
    struct PendingDamage {
        std::int64_t packets = 0;
        /** In the stream's time base. */
        std::int64_t duration = 0;
    };

    void finish(FrameChain& chain);
    void decode(const AVPacket* packet, FrameChain& chain);
    void begin(const AVFrame& frame, FrameChain& chain);
    std::int64_t missingAtBeginning(const AVFrame& frame) const;
    double secondsOfBeginning() const;
    bool isIncomplete(const AVPacket& packet) const;
    void noteDamage(const AVPacket* packet);
    std::int64_t missingBefore(const AVFrame& frame);
    void keepTime(std::int64_t missing, const AVFrame& frame, FrameChain& chain);
    void fillGap(std::int64_t frames, int rate, FrameChain& chain);
    void fillEnd(FrameChain& chain);
    bool hasForeignRest() const;
    bool losesItsRest() const;
    bool isEndDamaged(double missingSeconds) const;
    void deliver(AVFrame& frame, FrameChain& chain);
    void dropPadding(AVFrame& frame) const;
    bool tellsPacketLengths() const;
    bool isShorterThanDeclared() const;
    bool isMissingInside(std::int64_t bytes) const;

    FileInput input_;
    Container container_;
    EncoderDelay delay_;
    StreamDecoder decoder_;
    PacketTimes packets_;
    Timeline timeline_;
    PacketPointer packet_;
    FramePointer frame_;
    DecodeTally tally_;
    PendingDamage pendingDamage_;
    base::TrackFormat format_;
    std::optional<std::int64_t> declaredFrames_;
    std::int64_t droppedFrames_ = 0;
    std::int64_t decodedEnd_ = 0;  // offset in the file at which the last decoded packet ends
    bool isAlarmed_ = false;       // something was wrong since the last frame of known time
};

}  // namespace media
