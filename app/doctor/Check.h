// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** What became of a check. A note is about what is missing and not needed everywhere. */
enum class Outcome { ok, note, failed };

/** One thing that was looked at. */
struct Check {
    std::string subject;
    Outcome outcome = Outcome::ok;
    /** What was seen. */
    std::string text;
};

}  // namespace app
