// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace app {

/** The stream for results: the caller's standard output, unbuffered, with every failure
 *  detected. */
class ResultStream {
public:
    /** @param descriptor  remains the caller's; -1 when there is none, then every write fails */
    explicit ResultStream(int descriptor) : descriptor_(descriptor) {}

    /** @throws OutputError when the text could not be written completely */
    void write(std::string_view text);

private:
    int descriptor_;
};

}  // namespace app
