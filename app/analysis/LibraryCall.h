// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>
#include <utility>

namespace app {

/** Rounds toward zero while it lives, then gives the thread its own mode back, also when a call
 *  throws.
 *
 *  The stand-alone utilities compute in the mode they find. A plain host calls them after a
 *  session, which leaves round-toward-zero set: in that mode the tool gives the answers such a host
 *  gets. Everything else of the tool (decoding, converting, drawing, printing) needs the thread's
 *  own mode. */
class LibraryRounding {
public:
    LibraryRounding() : ownMode_(std::fegetround()) { std::fesetround(FE_TOWARDZERO); }
    ~LibraryRounding() { std::fesetround(ownMode_); }
    LibraryRounding(const LibraryRounding&) = delete;
    LibraryRounding& operator=(const LibraryRounding&) = delete;

private:
    int ownMode_;
};

/** Calls a utility of the library in that mode. Whole tracks need none of this: their library keeps
 *  the caller's mode. */
template <class Call>
decltype(auto) libraryCall(Call&& call) {
    const LibraryRounding rounding;
    return std::forward<Call>(call)();
}

}  // namespace app
