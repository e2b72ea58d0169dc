// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace media {

/** A file that appears whole or not at all: written beside its final place, then renamed over it.
 *
 *  Without commit() nothing is left behind, and an existing file of that name stays as it was. */
class OutputFile {
public:
    /** @throws OutputError when no file can be written there */
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* bytes, std::size_t count);

    /** Sets the offset from the file's beginning at which the next bytes are written. */
    void seek(std::int64_t offset);

    /** Of the draft, for libraries that write by themselves. */
    int descriptor() const { return descriptor_; }

    /** @return what could not be done although the file has been written, in words for people;
     *          empty when all is well */
    std::string commit();

    /** Checks, before hours of work, whether the file can be written: its folder exists and is
     *  writable, and nothing but a writable regular file would be replaced.
     *  @throws OutputError with the reason if not */
    static void requireWritable(const std::string& path);

    /** Whether both names lead to the same existing file, by links or otherwise. */
    static bool isSameFile(const std::string& one, const std::string& other);

private:
    void fail(int errorNumber) const;
    std::string setPermissions() const;

    std::string shownPath_;
    std::string finalPath_;  // links followed: a link keeps pointing there
    std::string draftPath_;
    int descriptor_ = -1;
};

}  // namespace media
