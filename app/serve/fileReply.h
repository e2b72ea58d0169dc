// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/TrackSource.h"
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

/** The bytes of a track's file as they are, or the range of them that is asked for.
 *  @param format  of that file; says what the client is told it is
 *  @throws TrackError when it is no file that can be read */
HttpReply fileReply(const std::string& path, const base::TrackFormat& format,
                    const std::string& range);

}  // namespace app
