// SPDX-License-Identifier: MIT
#include "io/ResultStream.h"

#include "io/errors.h"
#include "io/writeFully.h"

namespace app {

void ResultStream::write(std::string_view text) {
    if (descriptor_ == -1) throw OutputError("standard output cannot be written: it is closed");
    const int failure = writeFully(descriptor_, text.data(), text.size());
    if (failure != 0) {
        throw OutputError("standard output cannot be written: " + systemReason(failure));
    }
}

}  // namespace app
