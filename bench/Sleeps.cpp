// SPDX-License-Identifier: MIT
#include "bench/Sleeps.h"

#include <cerrno>
#include <ctime>

namespace {

long asked = 0;
bool passOn = true;

}  // namespace

/** Replaces the C library's function. */
extern "C" int nanosleep(const timespec* request, timespec* rest) {
    if (request->tv_sec == 0 && request->tv_nsec == 0) {
        ++asked;
        if (!passOn) return 0;
    }
    const int error = clock_nanosleep(CLOCK_REALTIME, 0, request, rest);
    if (error == 0) return 0;
    errno = error;
    return -1;
}

namespace beatatlas::bench {

Sleeps::LeftOut::LeftOut() {
    passOn = false;
}

Sleeps::LeftOut::~LeftOut() {
    passOn = true;
}

long Sleeps::count() {
    return asked;
}

}  // namespace beatatlas::bench
