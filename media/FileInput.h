// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "media/RawFormat.h"

struct AVIOContext;

namespace media {

/** Distinguishes one state of a file from another: a pass over a file that has changed in between
 *  would analyse another track. */
struct FileState {
    std::uint64_t device = 0;
    /** The file's number on its device. */
    std::uint64_t number = 0;
    std::int64_t size = 0;
    std::int64_t changedSeconds = 0;
    std::int64_t changedNanoseconds = 0;

    bool operator==(const FileState&) const = default;
};

/** A regular file, or standard input, as FFmpeg reads it.
 *
 *  FFmpeg never sees the file's name: names such as "http:x" or "concat:a" would otherwise be
 *  taken for something other than a file, and the file's extension must not decide how the content
 *  is read. */
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

    /** The format of samples without a container, if it was stated. */
    const std::optional<RawFormat>& rawFormat() const { return rawFormat_; }

    /** The state when the file was opened. */
    const FileState& opened() const { return opened_; }

    /** Whether the state is another now. */
    bool hasChanged() const;

    /** Reads bytes at an offset of the file without moving the reading position. @return how many
     *  were read */
    std::size_t readAt(std::int64_t offset, void* bytes, std::size_t count) const;

    /** @throws TrackError with the system's reason if a read has failed: FFmpeg may take that for
     *  the end of the file */
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
    int failure_ = 0;  // errno of the last failed read
    std::unique_ptr<AVIOContext, ContextFree> context_;
};

}  // namespace media
