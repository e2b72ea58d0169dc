// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace base {

/** What becomes of one field of a file's tags. */
struct TagChange {
    enum class Kind {
        added,
        replaced,
        removed,    ///< another name for what is written now
        kept,       ///< says something else, and stays
        unchanged,  ///< says the same already
    };

    Kind kind = Kind::added;
    std::string field;   ///< as the container names it: "TBPM", "TXXX:fBPM"
    std::string before;  ///< empty where there was none. As it was found: not always clean text
    std::string after;   ///< what is written, or, where the field is kept, would have been
};

}  // namespace base
