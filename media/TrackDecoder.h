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

/** Decodes a track from its first frame of music to its last, once. For another pass make another
 *  decoder: the same file gives the same samples every time, and so no length of track has to be
 *  held in memory. */
class TrackDecoder {
public:
    /** @throws TrackError when the file holds no audio that can be decoded */
    explicit TrackDecoder(const std::string& path);

    /** Decodes everything that can be decoded. Damage is counted, not thrown. */
    void run(FrameChain& chain);

    /** A part of run(): the next packet. @return false after the last, when the chain has been
     *  finished */
    bool step(FrameChain& chain);

    /** The same, folded to stereo at a session's rate. */
    void run(TrackSink& sink);

    /** Frames of music that run() will find at the track's own rate, by the file's own account;
     *  nothing where that is none or vague. Known with the first frame of the chain; true unless
     *  the file is not what it says. */
    std::optional<std::int64_t> declaredFrames() const { return declaredFrames_; }

    /** How much of the file has been read, 0 to 1. */
    double shareRead() const;

    /** Known after run(). */
    const DecodeTally& tally() const { return tally_; }
    const base::TrackFormat& format() const { return format_; }

    /** The file as it was opened, and whether it is another now. */
    const FileState& fileState() const { return input_.opened(); }
    bool hasFileChanged() const { return input_.hasChanged(); }

    /** What was left out before the first frame of music, see base::TrackSource. */
    std::int64_t droppedFrames() const { return droppedFrames_; }

    /** Length by the file's own account, seconds. */
    std::optional<double> declaredSeconds() const { return container_.declaredSeconds(); }

    /** Hz, by the file's own account; 0 when it has none. */
    int declaredRate() const { return container_.stream().codecpar->sample_rate; }

    /** Whether the file, of a format that marks its end, has no such mark. */
    bool lacksEnd() const { return container_.lacksEnd(); }

    /** Whether the file ends before its own account of itself does: what was decoded is not the
     *  whole track. After run(). */
    bool isCutOff() const;

private:
    /** Packets that could not be decoded since the last one that could. */
    struct PendingDamage {
        std::int64_t packets = 0;
        std::int64_t duration = 0;  ///< in the stream's time base
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
    std::int64_t decodedEnd_ = 0;  ///< bytes of the file behind the last packet that was decoded
    bool isAlarmed_ = false;       ///< something was amiss since the last frame of known time
};

}  // namespace media
