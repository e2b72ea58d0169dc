// SPDX-License-Identifier: MIT
// Only part of builds with a leak checker.

// The checker asks for these names: NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl37-c,
// cert-dcl51-cpp)
extern "C" {

const char* __lsan_default_suppressions();
const char* __lsan_default_options();

/** Fontconfig, which cairo and Pango ask for fonts, keeps its tables until the process ends. */
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

/** Standard error is for the tool's own messages. */
const char* __lsan_default_options() {
    return "print_suppressions=0";
}
}
// NOLINTEND(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
