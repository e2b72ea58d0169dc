// SPDX-License-Identifier: MIT
#include "media/Muxer.h"

#include <new>
#include <type_traits>

#include "base/displayName.h"
#include "base/errors.h"

namespace media {

namespace {

constexpr int kWriteBufferBytes = 64 * 1024;

#if LIBAVFORMAT_VERSION_MAJOR < 61
using WrittenByte = std::uint8_t;
#else
using WrittenByte = const std::uint8_t;
#endif

}  // namespace

class Muxer::Sink {
public:
    explicit Sink(const std::string& path) : file_(path) {}

    AVIOContext* makeContext() {
        auto* buffer = static_cast<unsigned char*>(av_malloc(kWriteBufferBytes));
        if (buffer == nullptr) throw std::bad_alloc();
        AVIOContext* io =
            avio_alloc_context(buffer, kWriteBufferBytes, 1, this, nullptr, writeBytes, seekTo);
        if (io != nullptr) return io;
        av_free(buffer);
        throw std::bad_alloc();
    }

    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

    std::string commit() { return file_.commit(); }

private:
    template <class Call>
    auto guarded(Call call) -> std::invoke_result_t<Call> {
        if (failure_) return AVERROR(EIO);
        try {
            return call();
        } catch (...) {
            failure_ = std::current_exception();
            return AVERROR(EIO);
        }
    }

    static int writeBytes(void* self, WrittenByte* bytes, int count) {
        auto& sink = *static_cast<Sink*>(self);
        return sink.guarded([&] {
            sink.file_.write(bytes, static_cast<std::size_t>(count));
            return count;
        });
    }

    static std::int64_t seekTo(void* self, std::int64_t offset, int origin) {
        auto& sink = *static_cast<Sink*>(self);
        if (origin != SEEK_SET) return AVERROR(ENOSYS);
        return sink.guarded([&] {
            sink.file_.seek(offset);
            return offset;
        });
    }

    OutputFile file_;
    std::exception_ptr failure_;
};

void Muxer::IoFree::operator()(AVIOContext* context) const {
    av_freep(&context->buffer);
    avio_context_free(&context);
}

void Muxer::FormatFree::operator()(AVFormatContext* context) const {
    avformat_free_context(context);
}

Muxer::Muxer(const std::string& path, const char* name)
    : path_(path), sink_(std::make_unique<Sink>(path)), io_(sink_->makeContext()) {
    AVFormatContext* context = nullptr;
    require(avformat_alloc_output_context2(&context, nullptr, name, nullptr));
    format_.reset(context);
    context->pb = io_.get();
    context->flags |= AVFMT_FLAG_BITEXACT | AVFMT_FLAG_CUSTOM_IO;
    stream_ = avformat_new_stream(context, nullptr);
    if (stream_ == nullptr) throw std::bad_alloc();
}

Muxer::~Muxer() = default;

bool Muxer::wantsGlobalHeader() const {
    return (format_->oformat->flags & AVFMT_GLOBALHEADER) != 0;
}

void Muxer::begin(const char* options) {
    AVDictionary* dictionary = nullptr;
    av_dict_parse_string(&dictionary, options, "=", ":", 0);
    const int written = avformat_write_header(format_.get(), &dictionary);
    av_dict_free(&dictionary);
    require(written);
}

void Muxer::write(AVPacket& packet) {
    require(av_write_frame(format_.get(), &packet));
}

std::string Muxer::commit() {
    require(av_write_trailer(format_.get()));
    avio_flush(io_.get());
    require(io_->error);
    return sink_->commit();
}

void Muxer::require(int result) const {
    sink_->rethrow();
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0)
        throw base::OutputError(base::displayName(path_) +
                                " cannot be written: " + ffmpegReason(result));
}

}  // namespace media
