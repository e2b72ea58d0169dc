// SPDX-License-Identifier: MIT
// The smallest host of a session in C++: one frame of silence, and the version it was compiled with.
#include <beatatlas/beatatlas.hpp>
#include <beatatlas/dsp.h>
#include <beatatlas/key_tables.h>
#include <beatatlas/utilities.h>
#include <cstdio>

int main() {
    float silence[1] = {0};
    void* session = BA_CreateSimple44k(1, 32, true, true, false);
    BA_SetSample(session, silence, silence, 1);
    std::printf("session %s %s\n", BEATATLAS_VERSION,
                BA_Analyzed(session) ? "analyzed" : "not analyzed");
    BA_Release(session);
}
