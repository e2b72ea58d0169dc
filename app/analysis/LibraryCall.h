// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>
#include <utility>

namespace app {

/** The rounding mode of a host's library calls, for as long as the object lives.
 *
 *  A session leaves round-toward-zero set, so that is how a plain host's later calls run, the stand-alone utilities
 *  among them: the tool gives the same answers. Everything else of the tool (decoding, converting, drawing, printing)
 *  needs the thread's own mode, which is given back at the end, also when the call throws. */
class LibraryRounding {
public:
    LibraryRounding() : ownMode_(std::fegetround()) { std::fesetround(FE_TOWARDZERO); }
    ~LibraryRounding() { std::fesetround(ownMode_); }
    LibraryRounding(const LibraryRounding&) = delete;
    LibraryRounding& operator=(const LibraryRounding&) = delete;

private:
    int ownMode_;
};

/** Runs a call of the library under its rounding mode. Every one of them goes through here. */
template <class Call>
decltype(auto) libraryCall(Call&& call) {
    const LibraryRounding rounding;
    return std::forward<Call>(call)();
}

}  // namespace app
