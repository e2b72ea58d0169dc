// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/TrackSource.h"
#include "base/errors.h"
#include "media/FileInput.h"
#include "media/ffmpeg.h"
#include "media/ogg/OggPackets.h"

namespace media {

/** An audio file's container. Recognises it by its content, opens it and chooses its music stream.
 *
 *  Only containers that hold the audio themselves are accepted. Playlists and scripts (HLS, concat,
 *  SDP …), which make a player open other files or addresses, are refused, and FFmpeg's means of
 *  opening anything are disabled. */
class Container {
public:
    /** The input must outlive the container. @throws TrackError when the content is not readable
     *  audio */
    explicit Container(FileInput& input);

    /** The music stream's next packet. Pictures and other streams are skipped.
     *  @return false at the end, or when reading cannot continue: see failure() */
    bool next(AVPacket& packet);

    /** FFmpeg's error number when next() stopped before the end; 0 otherwise. */
    int failure() const { return failure_; }

    AVStream& stream() const { return *stream_; }

    /** FFmpeg's short name of the container format: "mp3", "flac", "mov,mp4,m4a,3gp,3g2,mj2" … */
    std::string format() const { return context_->iformat->name; }
    bool isFormat(const char* name) const;

    /** The program that wrote the file, as its tags name it; empty when they do not. */
    std::string writer() const;

    /** The encoder of the music stream, as its tags name it; empty when they do not. */
    std::string encoder() const;

    /** The track's title and artist from the tags of the music stream (Ogg has them there), else
     *  from the file's. As they are in the file: not always UTF-8. */
    base::TrackTags tags() const;

    /** Length of the music stream in seconds as the file states it, with or without encoder
     *  padding, depending on the format; nothing when the file states none and it could only be
     *  estimated from the bit rate. */
    std::optional<double> declaredSeconds() const;

    /** Whether samples without a container end in the middle of a frame. */
    bool endsWithinFrame() const;

    /** Whether the packets' times are those of the pages' granules. FFmpeg's times are not exact,
     *  so in an undamaged file they are not checked. */
    bool isReadByPages() const { return oggPackets_.has_value(); }

    /** Pages whose checksum does not hold, and pages that are repeated. */
    std::int64_t damagedPages() const { return oggPackets_ ? oggPackets_->damagedPages() : 0; }
    std::int64_t repeatedPages() const { return oggPackets_ ? oggPackets_->repeatedPages() : 0; }

    /** Whether pages or packets before the first one are missing. Valid after next(). */
    bool lacksBeginning() const { return oggPackets_ && oggPackets_->lacksBeginning(); }

    /** Whether the format marks the end of a file and this file lacks the mark. */
    bool lacksEnd() const { return lacksEnd_; }

private:
    struct ContextClose {
        void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    };

    const AVInputFormat* recognise() const;
    void open(const AVInputFormat* format);
    void chooseStream();
    void surveyPages();
    bool resume();
    [[noreturn]] void refuse(int error, const char* otherwise,
                             base::TrackError::Kind kind = base::TrackError::Kind::damaged) const;

    FileInput& input_;
    std::unique_ptr<AVFormatContext, ContextClose> context_;
    AVStream* stream_ = nullptr;
    std::optional<OggPackets> oggPackets_;  // where pages are damaged
    int failure_ = 0;
    bool lacksEnd_ = false;
    std::int64_t packetEnd_ = 0;       // offset in the file at which the last packet ends
    std::int64_t lastFailureAt_ = -1;  // offset in the file from which reading continued
};

}  // namespace media
