// SPDX-License-Identifier: MIT
#include "cli/toolVersion.h"

#include <fmt/format.h>

#include "beatatlas/version.h"
#include "doctor/buildFacts.h"
#include "doctor/libraries.h"
#include "doctor/machine.h"
#include "media/ffmpeg.h"

namespace app {

std::string toolVersion() {
    return BEATATLAS_VERSION;
}

std::string versionText() {
    std::string text = fmt::format("beatatlas {}\n{}, {}\nFFmpeg {}\n", toolVersion(),
                                   compilerText(), vectorFormText(), av_version_info());
    for (const Library& library : libraries()) text += library.name + " " + library.known() + "\n";
    return text;
}

}  // namespace app
