// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "media/FileInput.h"
#include "media/end/FileBytes.h"
#include "media/end/declaredEnd.h"

namespace media {

namespace {

constexpr std::uint64_t kLongestBox = 1ULL << 62;

/** Bytes after the last box (a foreign tag, zeros) must not be taken for a box. */
bool isBox(const std::string& type) {
    static constexpr std::array kTypes = {"ftyp", "moov", "mdat", "free", "skip",
                                          "wide", "udta", "moof", "mfra", "uuid",
                                          "meta", "sidx", "styp", "emsg", "pnot"};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

/** Calls visit(type) for each box that begins within the file. @return where the last one ends */
template <class Visit>
std::int64_t walkBoxes(const FileInput& input, const Visit& visit) {
    std::int64_t end = 0;
    while (end < input.size()) {
        const FileBytes header(input, end, 16);
        if (!isBox(header.text(4, 4))) break;
        visit(header.text(4, 4));
        std::uint64_t length = header.bigEndian(0, 4);
        if (length == 1) length = header.bigEndian(8, 8);
        // 0: the box extends to the end of the file, wherever that is.
        if (length < 8 || length > kLongestBox) break;
        end += static_cast<std::int64_t>(length);
    }
    return end;
}

}  // namespace

std::optional<std::int64_t> mp4End(const FileInput& input) {
    return walkBoxes(input, [](const std::string&) {});
}

bool isMp4InFragments(const FileInput& input) {
    bool hasFragment = false;
    walkBoxes(input, [&](const std::string& type) { hasFragment |= type == "moof"; });
    return hasFragment;
}

}  // namespace media
