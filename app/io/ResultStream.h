// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace app {

/** Where results go: the caller's standard output, unbuffered, every failure noticed. */
class ResultStream {
public:
    /** @param descriptor  stays the caller's; -1 when there is none, then every write fails */
    explicit ResultStream(int descriptor) : descriptor_(descriptor) {}

    /** @throws OutputError when the text could not be written whole */
    void write(std::string_view text);

private:
    int descriptor_;
};

}  // namespace app
