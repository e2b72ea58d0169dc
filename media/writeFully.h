// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace media {

/** Writes all bytes, in as many calls as that takes. @return 0, or the errno value of the first
 *  failure
 *  @throws Interrupted when a signal asks the program to stop while the reader is slow */
int writeFully(int descriptor, const void* bytes, std::size_t count);

}  // namespace media
