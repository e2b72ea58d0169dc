// SPDX-License-Identifier: MIT
#include "dsp/lanes/VectorForm.h"

#include <algorithm>
#include <atomic>

namespace beatatlas {

namespace {

std::atomic<VectorForm> mostAllowed = VectorForm::avx512;

VectorForm askProcessor() {
#if BEATATLAS_WIDE_FORMS
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
        return VectorForm::avx512;
    if (__builtin_cpu_supports("avx2")) return VectorForm::avx2;
#endif
    return VectorForm::baseline;
}

}  // namespace

VectorForm widestVectorForm() {
    static const VectorForm widest = askProcessor();
    return widest;
}

VectorForm vectorForm() {
    return std::min(widestVectorForm(), mostAllowed.load(std::memory_order_relaxed));
}

void limitVectorForm(VectorForm most) {
    mostAllowed.store(most, std::memory_order_relaxed);
}

}  // namespace beatatlas
