// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::test {

/** Rounds to nearest while it lives, then gives the thread its own mode back.
 *
 *  Test signals are made under it, so that a fixture that rounds toward zero hears the same samples as any other. */
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
