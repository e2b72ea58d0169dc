// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "catalogue/Analysed.h"
#include "serve/HttpExchange.h"

namespace app {

/** Which bytes of a content are asked for. */
struct ByteRange {
    std::uint64_t first = 0;
    std::uint64_t length = 0;
};

/** Reads "bytes=0-99", "bytes=100-" and "bytes=-100" for a content of that length. Nothing for
 *  whatever is no single range or begins beyond the content. */
std::optional<ByteRange> rangeOf(const std::string& header, std::uint64_t length);

/** Whatever took the place of a track's file, a link to a file of another kind perhaps, is none of
 *  the catalogue's. @throws TrackError when the file is in another state than the analysed one */
void requireUnchanged(const catalogue::FileState& now, const catalogue::FileState& analysed);

/** The bytes of a track's file as they are, or the range of them that is asked for.
 *  @throws TrackError when it is no file that can be read, or has changed since it was analysed */
HttpReply fileReply(const catalogue::TrackRow& track, const std::string& range);

}  // namespace app
