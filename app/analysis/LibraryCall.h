// SPDX-License-Identifier: MIT
#pragma once

#include <cfenv>
#include <utility>

namespace app {

/** Sets rounding toward zero; the destructor restores the thread's own mode, also when a call
 *  throws.
 *
 *  The stand-alone utilities compute in the current mode. A plain host calls them after a session,
 *  which leaves round-toward-zero set: in that mode the tool gets the results that such a host
 *  gets. Everything else in the tool (decoding, converting, drawing, printing) needs the thread's
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

/** Calls a utility of the library in that mode. The library of whole tracks needs none of this: it
 *  keeps the caller's mode. */
template <class Call>
decltype(auto) libraryCall(Call&& call) {
    const LibraryRounding rounding;
    return std::forward<Call>(call)();
}

}  // namespace app
