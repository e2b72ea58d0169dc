// SPDX-License-Identifier: MIT
// Called once, before the first input of any target.
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Discards the library's progress lines; standard error stays with the fuzzer.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::perror("/dev/null");
    return 0;
}
