// SPDX-License-Identifier: MIT
#pragma once

namespace output {

/** From where the positions of a track are counted, and by how much they are moved. */
struct TimeOrigin {
    enum class At {
        /** The first frame of music. */
        music,
        /** The first frame that the file's decoder yields: what programs count from that do not
         *  leave out the delay of encoder and decoder. */
        file,
    };
    At at = At::music;

    /** Added to every position, milliseconds. */
    double offsetMs = 0.0;
};

}  // namespace output
