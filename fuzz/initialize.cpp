// SPDX-License-Identifier: MIT
// Called once, before the first input of any target.
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The library's progress lines lead nowhere; standard error stays the fuzzer's.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::perror("/dev/null");
    return 0;
}
