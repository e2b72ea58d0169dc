// SPDX-License-Identifier: MIT
#include "cli/toolVersion.h"

#include <cairo.h>
#include <fmt/format.h>
#include <soxr.h>

#include "beatatlas/version.h"
#include "media/ffmpeg.h"

namespace app {

std::string toolVersion() {
    return BEATATLAS_VERSION;
}

std::string versionText() {
    return fmt::format("beatatlas {}\nFFmpeg {}, {}, cairo {}\n", toolVersion(), av_version_info(),
                       soxr_version(), cairo_version_string());
}

}  // namespace app
