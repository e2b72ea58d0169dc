// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "support/Allocations.h"

namespace beatatlas::test {

/** Lets the work run short of memory at its first request, at its second, and so on until it needs no more.
 *
 *  Each time happens in a process of its own that starts from the state at this call, so that every refusal meets the
 *  same thing; an expectation that fails there makes the test fail here.
 *
 *  @param work       runs under the shortage
 *  @param aftermath  runs after it, with memory again; told whether std::bad_alloc came out of the work, and how many
 *                    requests had been granted
 *  @return how many requests were refused in turn */
long refuseEach(Requests requests, Shortage shortage, const std::function<void()>& work,
                const std::function<void(bool threw, long granted)>& aftermath);

}  // namespace beatatlas::test
