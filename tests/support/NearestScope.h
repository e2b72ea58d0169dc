// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::test {

/** Rounds to nearest while it lives, then restores the thread's own mode.
 *
 *  Test signals are made under it, so that a fixture that rounds toward zero gets the same samples
 *  as any other. */
class NearestScope {
public:
    NearestScope();
    ~NearestScope();
    NearestScope(const NearestScope&) = delete;
    NearestScope& operator=(const NearestScope&) = delete;

private:
    int callersMode_;
};

}  // namespace beatatlas::test
