// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace web {

/** A file of this folder, as it is built into the program. */
struct Asset {
    /** Below this folder: "track/trackView.js". */
    std::string_view name;
    /** "text/javascript; charset=utf-8" */
    std::string_view mediaType;
    std::string_view bytes;
};

/** @return null when there is no file of that name. The answer lives as long as the program. */
const Asset* findAsset(std::string_view name);

}  // namespace web
