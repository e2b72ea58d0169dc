// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "media/RawFormat.h"

namespace media {

/** What comes in by the process's standard input, as a file: a track may be read more than once.
 *
 *  A regular file is taken as it is. What comes through a pipe is first written, to its end, to a
 *  file without a name in $TMPDIR, else /var/tmp or /tmp: it is gone with the process, however that
 *  ends. */
class StandardInput {
public:
    /** The name that stands for it: "-". A file of that name is "./-". */
    static bool isNamedBy(const std::string& path) { return path == "-"; }

    /** Before it is opened. @param format  nothing: a container says what the bytes are */
    static void setRawFormat(std::optional<RawFormat> format);
    static const std::optional<RawFormat>& rawFormat();

    /** From any thread. @return a descriptor of the caller's own, to be read with pread()
     *  @throws TrackError when it cannot be read or kept, Interrupted */
    static int open();
};

}  // namespace media
