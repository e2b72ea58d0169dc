// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace app {

/** Browsers send the cookies of all ports of this computer, in one line of up to 8,000 bytes: those
 *  of some ninety programs like this one. */
inline constexpr std::size_t kMostHeadBytes = 16384;
/** The numbers of a hundred thousand tracks. */
inline constexpr std::size_t kMostBodyBytes = 1048576;

/** Why a request will not be answered: "400 Bad Request" or the like, and a sentence for people. */
struct Refusal {
    const char* status;
    std::string_view sentence;
};

/** How far a request has come, by its length alone. */
struct RequestFrame {
    /** With the empty line that ends it; 0: it is not whole yet. */
    std::size_t headBytes = 0;
    std::size_t bodyBytes = 0;
    /** Null while it may be answered. */
    const Refusal* refusal = nullptr;

    bool isWhole(std::size_t received) const {
        return refusal == nullptr && headBytes > 0 && received >= headBytes + bodyBytes;
    }
};

/** Reads how long a request is from its beginning. A head that is too long, a body of unknown or
 *  too great length and a head in which lines end otherwise than HTTP says are refused: nothing
 *  behind this check has to be careful with them. */
RequestFrame frameOf(std::string_view received);

}  // namespace app
