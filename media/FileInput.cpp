// SPDX-License-Identifier: MIT
#include "media/FileInput.h"

#include <cerrno>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "media/StandardInput.h"
#include "media/ffmpeg.h"

namespace media {

namespace {

using Kind = base::TrackError::Kind;

constexpr int kBufferBytes = 64 * 1024;

FileState stateOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

}  // namespace

FileInput::FileInput(const std::string& path) {
    openNamed(path);
    try {
        requireRegular();
        makeContext();
    } catch (...) {
        close(descriptor_);
        throw;
    }
}

FileInput::~FileInput() {
    context_.reset();
    close(descriptor_);
}

void FileInput::ContextFree::operator()(AVIOContext* context) const {
    av_freep(&context->buffer);
    avio_context_free(&context);
}

void FileInput::openNamed(const std::string& path) {
    if (StandardInput::isNamedBy(path)) {
        descriptor_ = StandardInput::open();
        rawFormat_ = StandardInput::rawFormat();
        return;
    }
    if (path.empty()) throw base::TrackError(base::kEmptyName, Kind::missing);
    // Opening a pipe would otherwise wait for its writer.
    descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ != -1) return;
    const bool isMissing = errno == ENOENT || errno == ENOTDIR;
    throw base::TrackError("cannot be opened: " + base::systemReason(errno),
                           isMissing ? Kind::missing : Kind::unreadable);
}

void FileInput::requireRegular() {
    struct stat status = {};
    if (fstat(descriptor_, &status) != 0)
        throw base::TrackError("cannot be examined", Kind::unreadable);
    const char* refusal = nullptr;
    if (S_ISDIR(status.st_mode))
        refusal = "is a folder, not an audio file";
    else if (!S_ISREG(status.st_mode))
        refusal = "is not a regular file; a track is read more than once";
    else if (status.st_size == 0)
        refusal = "is empty";
    if (refusal != nullptr) throw base::TrackError(refusal, Kind::notAudio);
    opened_ = stateOf(status);
}

void FileInput::makeContext() {
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    if (buffer == nullptr) throw std::bad_alloc();
    context_.reset(
        avio_alloc_context(buffer, kBufferBytes, 0, this, readCallback, nullptr, seekCallback));
    if (!context_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

int FileInput::readCallback(void* self, std::uint8_t* buffer, int size) {
    return static_cast<FileInput*>(self)->read(buffer, size);
}

int FileInput::read(std::uint8_t* buffer, int size) {
    if (base::Interrupt::isRequested()) return AVERROR_EXIT;
    const ssize_t count = pread(descriptor_, buffer, static_cast<std::size_t>(size), position_);
    if (count < 0) {
        if (errno == EINTR) return AVERROR(EAGAIN);
        failure_ = errno;
        return AVERROR(failure_);
    }
    position_ += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

void FileInput::requireReadable() const {
    if (failure_ != 0)
        throw base::TrackError("cannot be read: " + base::systemReason(failure_), Kind::unreadable);
}

std::int64_t FileInput::seekCallback(void* self, std::int64_t offset, int origin) {
    auto& input = *static_cast<FileInput*>(self);
    std::int64_t base = 0;
    switch (origin & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return input.opened_.size;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        base = input.position_;
        break;
    case SEEK_END:
        base = input.opened_.size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (offset < -base) return AVERROR(EINVAL);
    input.position_ = base + offset;
    return input.position_;
}

bool FileInput::hasChanged() const {
    struct stat status = {};
    return fstat(descriptor_, &status) != 0 || stateOf(status) != opened_;
}

std::size_t FileInput::readAt(std::int64_t offset, void* bytes, std::size_t count) const {
    const ssize_t got = pread(descriptor_, bytes, count, offset);
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

}  // namespace media
