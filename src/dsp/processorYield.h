// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Gives the processor away once: a sleep of zero length. Lets a host's other threads breathe in long stages. */
void yieldProcessor();

/** While it lives, yieldProcessor() does nothing in the calling thread: for an analysis in threads of its own or in a
 *  process of its own, where the thousands of yields of one closing analysis can cost more than all of its work. */
class NoYields {
public:
    NoYields();
    ~NoYields();
    NoYields(const NoYields&) = delete;
    NoYields& operator=(const NoYields&) = delete;

private:
    bool before_;
};

}  // namespace beatatlas
