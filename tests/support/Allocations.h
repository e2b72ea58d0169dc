// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/** Counts the memory requests of a test program and refuses them as asked. For programs made with
 *  beatatlas_watch_allocations in CMake: operator new in all its forms is replaced, calloc and free are wrapped. */
namespace beatatlas::test {

/** Blocks asked of operator new so far. */
std::size_t allocationCount();

/** Blocks that operator new and calloc gave and that have not been given back. */
long liveBlocks();

/** Which requests a shortage refuses. */
enum class Requests { news, callocs, both };

/** Whether a shortage passes with the first refusal or stays. */
enum class Shortage { lasting, once };

/** While it lives, requests after the first `granted` are refused: operator new throws std::bad_alloc (its nothrow forms
 *  give null), calloc gives null. One of each kind of requests at a time. */
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
