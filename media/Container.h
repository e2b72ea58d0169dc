// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/TrackSource.h"
#include "media/FileInput.h"
#include "media/ffmpeg.h"
#include "media/ogg/OggPackets.h"

namespace media {

/** An audio file's container: recognised by its content, opened, its music stream chosen.
 *
 *  Only containers that hold the audio themselves are accepted. Playlists and scripts (HLS, concat,
 *  SDP …), which make a player open other files or addresses, are refused, and FFmpeg's means of
 *  opening anything are disabled. */
class Container {
public:
    /** @throws TrackError when the content is no audio that can be read. The input must outlive the
     *  container. */
    explicit Container(FileInput& input);

    /** The music stream's next packet. Pictures and other streams are passed over.
     *  @return false at the end, or where reading on is impossible: see failure() */
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

    /** How the track is called, by the music stream's own tags (Ogg has them there), else the
     *  file's. As they were found: not always UTF-8. */
    base::TrackTags tags() const;

    /** Length of the music stream in seconds by its own account, encoder padding included or not as
     *  the format has it; nothing when the format has no such account and it could only be guessed
     *  from the bit rate. */
    std::optional<double> declaredSeconds() const;

    /** Whether samples without a container end in the middle of a frame. */
    bool endsWithinFrame() const;

    /** Whether the packets' times are those of the pages' granules. FFmpeg's own are not exact, so
     *  that a sound file is taken as it is. */
    bool isReadByPages() const { return oggPackets_.has_value(); }

    /** Pages whose bytes were not those that were written, and pages that were there before. */
    std::int64_t damagedPages() const { return oggPackets_ ? oggPackets_->damagedPages() : 0; }
    std::int64_t repeatedPages() const { return oggPackets_ ? oggPackets_->repeatedPages() : 0; }

    /** Whether pages or packets before the first one are missing. After next(). */
    bool lacksBeginning() const { return oggPackets_ && oggPackets_->lacksBeginning(); }

    /** Whether the file, of a format that marks its end, has no such mark. */
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
    [[noreturn]] void refuse(int error, const char* otherwise) const;

    FileInput& input_;
    std::unique_ptr<AVFormatContext, ContextClose> context_;
    AVStream* stream_ = nullptr;
    std::optional<OggPackets> oggPackets_;  ///< where pages are damaged
    int failure_ = 0;
    bool lacksEnd_ = false;
    std::int64_t packetEnd_ = 0;       ///< bytes of the file behind the last packet
    std::int64_t lastFailureAt_ = -1;  ///< place in the file from which reading went on
};

}  // namespace media
