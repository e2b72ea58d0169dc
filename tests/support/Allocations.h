// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/** Counts the memory requests of a test program and refuses some on demand. For programs built with
 *  beatatlas_watch_allocations in CMake, which replaces all forms of operator new and wraps calloc
 *  and free. */
namespace beatatlas::test {

/** Blocks requested from operator new so far. */
std::size_t allocationCount();

/** Blocks allocated by operator new and calloc and not yet freed. */
long liveBlocks();

/** Which requests a shortage refuses. */
enum class Requests { news, callocs, both };

/** Whether a shortage lasts or ends with the first refusal. */
enum class Shortage { lasting, once };

/** While it lives, requests after the first `granted` are refused: operator new throws
 *  std::bad_alloc (its nothrow forms return null), calloc returns null. Only one object for each
 *  kind of request at a time. */
class RequestsFailAfter {
public:
    explicit RequestsFailAfter(long granted, Shortage shortage = Shortage::lasting,
                               Requests requests = Requests::both);
    ~RequestsFailAfter();
    RequestsFailAfter(const RequestsFailAfter&) = delete;
    RequestsFailAfter& operator=(const RequestsFailAfter&) = delete;

    long refusals() const;

private:
    Requests requests_;
};

/** The same for operator new alone. */
class AllocationsFailAfter : public RequestsFailAfter {
public:
    explicit AllocationsFailAfter(long granted)
        : RequestsFailAfter(granted, Shortage::lasting, Requests::news) {}
};

/** The same for calloc alone. */
class CallocFailsAfter : public RequestsFailAfter {
public:
    explicit CallocFailsAfter(long granted)
        : RequestsFailAfter(granted, Shortage::lasting, Requests::callocs) {}
};

}  // namespace beatatlas::test
