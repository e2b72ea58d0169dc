// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace media {

/** Where files are kept that go with the process: $TMPDIR, else the first of /var/tmp and /tmp that
 *  may be written to. */
std::string temporaryFolder();

/** A file without a name, to be read and written. @return -1 and errno where the folder takes
 *  none */
int openNameless(const std::string& folder);

}  // namespace media
