// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

/** Takes apart a stream of file names that end in NUL or in a line's end.
 *
 *  Where nothing was said, the first 64 KiB decide: no name has room for a NUL, and none is so long
 *  that its NUL would come later. Of a name without an end no more than 64 KiB are kept, more than
 *  any file's name has: the system refuses it. */
class NameList {
public:
    /** @param endsInNul  not for the stream to decide */
    explicit NameList(bool endsInNul);

    /** @return the names that are complete now */
    std::vector<std::string> put(std::string_view bytes);

    /** @return the rest, whose last name need not end */
    std::vector<std::string> finish();

private:
    std::vector<std::string> takeComplete();
    void shorten();

    std::string waiting_;
    std::optional<char> end_;
};

}  // namespace app
