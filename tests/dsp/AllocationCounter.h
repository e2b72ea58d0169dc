// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace beatatlas::test {

/** Allocations of this test program so far. A program that asks for it is linked with AllocationCounter.cpp, whose
 *  operator new counts and can be made to fail. */
std::size_t allocationCount();

/** While it lives, every allocation after the first `granted` throws std::bad_alloc. */
class AllocationsFailAfter {
public:
    explicit AllocationsFailAfter(long granted);
    ~AllocationsFailAfter();
    AllocationsFailAfter(const AllocationsFailAfter&) = delete;
    AllocationsFailAfter& operator=(const AllocationsFailAfter&) = delete;
};

}  // namespace beatatlas::test
