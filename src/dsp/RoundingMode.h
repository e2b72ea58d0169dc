// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Sets this thread's floating-point rounding mode to toward zero and leaves it set.
 *
 *  Every result of the library is defined under this mode, so each entry that computes sets it
 *  first: the mode belongs to the thread, and a host may feed a session from another thread than
 *  the one that created it. */
void setRoundTowardZero();

/** Rounds toward zero while it lives, then gives the thread its own mode back. For getters that
 *  compute. */
class TowardZeroScope {
public:
    TowardZeroScope();
    ~TowardZeroScope();
    TowardZeroScope(const TowardZeroScope&) = delete;
    TowardZeroScope& operator=(const TowardZeroScope&) = delete;

private:
    int callersMode_;
};

}  // namespace beatatlas
