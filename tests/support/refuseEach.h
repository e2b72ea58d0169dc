// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "support/Allocations.h"

namespace beatatlas::test {

/** Runs the work short of memory from its first request on, from its second, and so on until no
 *  request is refused.
 *
 *  Each run has a process of its own that starts from the state at this call, so that every refusal
 *  meets the same state; an expectation that fails there makes the test fail here.
 *
 *  @param work       runs under the shortage
 *  @param aftermath  runs after it, with memory again; receives whether the work threw
 *                    std::bad_alloc, and how many requests had been granted
 *  @return how many runs met a refusal */
long refuseEach(Requests requests, Shortage shortage, const std::function<void()>& work,
                const std::function<void(bool threw, long granted)>& aftermath);

}  // namespace beatatlas::test
