// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace app {

/** A library that decides over results or files. */
struct Library {
    std::string name;
    /** The version of the headers that the program was compiled with. */
    std::string built;
    /** The version that is loaded; empty where the library does not say. */
    std::string running;

    const std::string& known() const { return running.empty() ? built : running; }

    /** Whether the loaded one may stand in for that of the headers: it has the same major number
     *  and is no older, or does not say. */
    bool fits() const;
};

std::vector<Library> libraries();

}  // namespace app
