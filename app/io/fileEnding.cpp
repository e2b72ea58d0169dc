// SPDX-License-Identifier: MIT
#include "io/fileEnding.h"

#include <algorithm>
#include <cctype>

namespace app {

bool hasEnding(std::string_view path, std::string_view ending) {
    if (path.size() < ending.size()) return false;
    const std::string_view tail = path.substr(path.size() - ending.size());
    return std::equal(tail.begin(), tail.end(), ending.begin(), [](char own, char wanted) {
        return std::tolower(static_cast<unsigned char>(own)) == wanted;
    });
}

}  // namespace app
