// SPDX-License-Identifier: MIT
#include "media/writeFully.h"

#include <cerrno>

#include <unistd.h>

#include "base/Interrupt.h"

namespace media {

int writeFully(int descriptor, const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written < 0) {
            if (errno != EINTR) return errno;
            base::Interrupt::check();
            continue;
        }
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

}  // namespace media
