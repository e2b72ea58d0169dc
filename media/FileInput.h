// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "media/RawFormat.h"

struct AVIOContext;

namespace media {

/** What tells one state of a file from another: a pass over a file that has changed since would
 *  hear another track. */
struct FileState {
    std::uint64_t device = 0;
    std::uint64_t number = 0;  ///< the file's own on its device
    std::int64_t size = 0;
    std::int64_t changedSeconds = 0;
    std::int64_t changedNanoseconds = 0;

    bool operator==(const FileState&) const = default;
};

/** A regular file, or standard input, as FFmpeg reads it.
 *
 *  FFmpeg never sees the file's name: names such as "http:x" or "concat:a" would otherwise be taken
 *  for something else than a file, and the name's ending must not decide how the content is
 *  read. */
class FileInput {
public:
    /** @param path  "-": standard input
     *  @throws TrackError when the file is missing, unreadable, empty or not a regular file */
    explicit FileInput(const std::string& path);
    ~FileInput();
    FileInput(const FileInput&) = delete;
    FileInput& operator=(const FileInput&) = delete;

    AVIOContext* context() const { return context_.get(); }
    std::int64_t size() const { return opened_.size; }

    /** How its samples lie, where that was told and no container does. */
    const std::optional<RawFormat>& rawFormat() const { return rawFormat_; }

    /** As it was when it was opened. */
    const FileState& opened() const { return opened_; }

    /** Whether it is another now. */
    bool hasChanged() const;

    /** Bytes from a place of the file, without moving the reading position. @return how many were
     *  read */
    std::size_t readAt(std::int64_t offset, void* bytes, std::size_t count) const;

    /** @throws TrackError with the system's reason once a read has failed: FFmpeg may take that for
     *  the file's end */
    void requireReadable() const;

private:
    struct ContextFree {
        void operator()(AVIOContext* context) const;
    };

    static int readCallback(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seekCallback(void* self, std::int64_t offset, int origin);
    int read(std::uint8_t* buffer, int size);
    void openNamed(const std::string& path);
    void requireRegular();
    void makeContext();

    int descriptor_ = -1;
    std::optional<RawFormat> rawFormat_;
    FileState opened_;
    std::int64_t position_ = 0;
    int failure_ = 0;  ///< errno of the last failed read
    std::unique_ptr<AVIOContext, ContextFree> context_;
};

}  // namespace media
