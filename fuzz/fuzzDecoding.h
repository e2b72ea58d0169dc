// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace beatatlas::fuzz {

/** A file in memory with a path, so that it can be opened like any other. */
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t count);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

/** Does everything that the tool does with a file before the analysis, in two passes, which have to
 *  give the same samples. @return how many frames came out of it, at the session's rate */
std::size_t decodeTwice(const std::string& path);

}  // namespace beatatlas::fuzz
