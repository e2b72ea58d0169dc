// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace media {

class FileInput;

/** A section of a file. Reading outside it yields zeros, so that no header needs a length check of
 *  its own. */
class FileBytes {
public:
    FileBytes(const FileInput& input, std::int64_t offset, std::size_t count);

    std::size_t size() const { return bytes_.size(); }
    std::uint8_t byte(std::size_t at) const;
    std::uint64_t bigEndian(std::size_t at, std::size_t count) const;
    std::uint64_t littleEndian(std::size_t at, std::size_t count) const;
    std::string text(std::size_t at, std::size_t count) const;

    /** Where the text occurs first; std::string::npos when it does not. */
    std::size_t findFirst(std::string_view text) const { return bytes_.find(text); }

    /** Where the text occurs last; std::string::npos when it does not. */
    std::size_t findLast(const std::string& text) const { return bytes_.rfind(text); }

private:
    std::string bytes_;
};

/** Offset of the first occurrence of the text in a file that begins at `from` or later and before
 *  `end`; -1 when there is none. */
std::int64_t findInFile(const FileInput& input, std::string_view text, std::int64_t from,
                        std::int64_t end);

}  // namespace media
