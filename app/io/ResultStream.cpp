// SPDX-License-Identifier: MIT
#include "io/ResultStream.h"

#include "base/errors.h"
#include "media/writeFully.h"

namespace app {

void ResultStream::write(std::string_view text) {
    if (descriptor_ == -1)
        throw base::OutputError("standard output cannot be written: it is closed");
    const int failure = media::writeFully(descriptor_, text.data(), text.size());
    if (failure != 0) {
        throw base::OutputError("standard output cannot be written: " +
                                base::systemReason(failure));
    }
}

}  // namespace app
