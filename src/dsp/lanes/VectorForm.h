// SPDX-License-Identifier: MIT
#pragma once

// Code in vector lanes is written once, as inline functions over vector types, and compiled into
// one plain function per form; these attributes open the wider registers to such a function.
// AVX-512 brings fused multiply-add with it; the flags of every source (-ffp-contract=off) keep the
// compiler from using it, so every form gives the same bits.
#define BEATATLAS_LANES __attribute__((always_inline)) inline
#if defined(__x86_64__)
#define BEATATLAS_WIDE_FORMS 1
#define BEATATLAS_AVX2 __attribute__((target("avx2")))
#define BEATATLAS_AVX512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl")))
#else
#define BEATATLAS_WIDE_FORMS 0
#endif

namespace beatatlas {

/** The instruction sets for which the block kernels exist. The baseline runs on every processor. */
enum class VectorForm { baseline, avx2, avx512 };

/** The widest form that this processor and its system run. */
VectorForm widestVectorForm();

/** The form in which the kernels run: the widest, unless a test has set a lower limit. */
VectorForm vectorForm();

/** Keeps all kernels of the process to forms up to this one, so that tests can compare them; a form
 *  that the processor does not have stays out of reach. Not for use while another thread
 *  analyses. */
void limitVectorForm(VectorForm most);

}  // namespace beatatlas
