// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace media {

/** A file that appears whole or not at all: written beside its final place, then renamed over it.
 *
 *  Without commit() nothing is left behind, and an older file of that name stays as it was. */
class OutputFile {
public:
    /** @throws OutputError when the place cannot be written */
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* bytes, std::size_t count);

    /** Where the next bytes go, counted from the file's beginning. */
    void seek(std::int64_t offset);

    /** Of the file on its way, for libraries that write by themselves. */
    int descriptor() const { return descriptor_; }

    /** @return what could not be done although the file is in its place, as a reason for people;
     *          empty when all is well */
    std::string commit();

    /** Looks, before hours of work, whether the place can be written: its folder is there and lets
     *  one write, and nothing but a regular file that one may write would be replaced.
     *  @throws OutputError with the reason if not */
    static void requireWritable(const std::string& path);

    /** Whether both names lead to one existing file, by links or otherwise. */
    static bool isSameFile(const std::string& one, const std::string& other);

private:
    void fail(int errorNumber) const;
    std::string setPermissions() const;

    std::string shownPath_;
    std::string finalPath_;  ///< links followed: a link keeps pointing there
    std::string draftPath_;
    int descriptor_ = -1;
};

}  // namespace media
