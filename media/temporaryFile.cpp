// SPDX-License-Identifier: MIT
#include "media/temporaryFile.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace media {

std::string temporaryFolder() {
    const char* chosen = std::getenv("TMPDIR");
    if (chosen != nullptr && *chosen != '\0') return chosen;
    return access("/var/tmp", W_OK) == 0 ? "/var/tmp" : "/tmp";
}

int openNameless(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor != -1) return descriptor;
    std::string path = folder + "/beatatlas-XXXXXX";
    const int named = mkostemp(path.data(), O_CLOEXEC);
    if (named != -1) unlink(path.c_str());
    return named;
}

}  // namespace media
