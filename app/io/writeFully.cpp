// SPDX-License-Identifier: MIT
#include "io/writeFully.h"

#include <cerrno>

#include <unistd.h>

#include "io/Interrupt.h"

namespace app {

int writeFully(int descriptor, const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written < 0) {
            if (errno != EINTR) return errno;
            Interrupt::check();
            continue;
        }
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

}  // namespace app
