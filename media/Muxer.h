// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "media/OutputFile.h"
#include "media/ffmpeg.h"

namespace media {

/** A file with one stream of audio that FFmpeg puts together; it appears whole or not at all.
 *
 *  Describe the stream, then begin(), write() its packets in order, commit(). Every call throws
 *  OutputError with the reason when the file cannot be written, or std::bad_alloc. */
class Muxer {
public:
    /** @param name  FFmpeg's, of the format: "wav" */
    Muxer(const std::string& path, const char* name);
    ~Muxer();
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;

    AVStream& stream() { return *stream_; }

    /** Whether the encoder's header goes to the beginning of the file. */
    bool wantsGlobalHeader() const;

    /** @param options  the format's own, "key=value:key=value" */
    void begin(const char* options);

    void write(AVPacket& packet);

    /** @return as OutputFile::commit() */
    std::string commit();

    /** @param result  that a function of FFmpeg's returned
     *  @throws OutputError where it says that the function failed, or what a write threw
     *          meanwhile */
    void require(int result) const;

private:
    /** FFmpeg calls back from C code, which no exception may cross: it is kept until FFmpeg has
     *  returned. */
    class Sink;

    struct IoFree {
        void operator()(AVIOContext* context) const;
    };
    struct FormatFree {
        void operator()(AVFormatContext* context) const;
    };

    std::string path_;
    std::unique_ptr<Sink> sink_;
    std::unique_ptr<AVIOContext, IoFree> io_;
    std::unique_ptr<AVFormatContext, FormatFree> format_;
    AVStream* stream_ = nullptr;
};

}  // namespace media
