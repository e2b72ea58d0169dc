// SPDX-License-Identifier: MIT
/** @file
 *  The free signal routines of Beat Atlas: a window, statistics, sorts, small filters and an FFT.
 *
 *  For C++ hosts: the names have C++ linkage and live in the global namespace (two of them
 *  overload).
 *
 *  Common to all of them:
 *  - Every array belongs to the caller, is not kept, and is as large as each function says; nothing
 *    is checked for null. Pointers are not const in the signatures, but only what is said to be
 *    written is written.
 *  - Nothing is kept between calls: a filter starts from silence each time. Only fft_less_normalize
 *    allocates.
 *  - They compute in the calling thread's rounding mode and leave it alone. Any thread, any number
 *    at a time.
 *  - NaN and infinities pass through the arithmetic; no input makes a routine hang or leave its
 *    arrays.
 *
 *  Smoothing 1000 samples below 0.05 of their rate:
 *
 *      float b, a;
 *      make_lpf0(&b, &a, 0.05F);
 *      filter1(samples, samples, 1000, b, a); */
#pragma once

#include "beatatlas/export.h"

/** @name Window
 *  @{ */

/** Hann window of n points without zero end points: w[k - 1] = 0.5 - 0.5 cos(2πk / (n + 1)) for k =
 *  1 … n.
 *
 *  n = 1 gives 1.0; n = 3 gives 0.5, 1.0, 0.5. n ≤ 0 writes nothing.
 *  @param n  length of the window
 *  @param w  room for n values */
BA_API void hanning(int n, float* w);
/** @} */

/** @name Statistics
 *  @{ */

/** The largest of v[0] … v[n - 1]; the first of equal ones wins. n < 2 gives v[0].
 *
 *  A NaN is never larger, and nothing is larger than a NaN in v[0].
 *  @param v   at least one value, whatever n
 *  @param n   how many
 *  @param at  receives the index of the answer (0 for n < 2); may be null */
BA_API float max_v(float* v, int n, int* at);

/** The same in double precision. */
BA_API double max_v(double* v, int n, int* at);

/** The last of v[1] … v[n - 1] that is below v[0]; v[0] when none is, and for n < 2.
 *
 *  NOT the minimum: 5, 3, 7, 4 gives 4.
 *  @param v  at least one value, whatever n
 *  @param n  how many */
BA_API float min_v(float* v, int n);

/** The mean of n values, summed in single precision from v[0] upward. n = 0 gives NaN. */
BA_API float ave_v(float* v, int n);

/** Always 0; the arguments are not looked at. */
BA_API float mode_v(float* v, int n);
/** @} */

/** @name Sorts
 *
 *  lo and hi are the first and the last index of the part to sort; lo ≥ hi does nothing. idx is
 *  rearranged like v: filled with 0, 1, 2 … beforehand it says afterwards where each value stood.
 *  NaNs end up somewhere.
 *  @{ */

/** Sorts v[lo … hi] in descending order, idx along with it. Not stable. */
BA_API void QSort(float* v, int* idx, int lo, int hi);

/** Sorts v[lo … hi] in descending order. */
BA_API void QSort2(int* v, int lo, int hi);

/** Sorts v[lo … hi] in ascending order. */
BA_API void QSort2_Ascend(int* v, int lo, int hi);

/** As QSort, with equal values in ascending order of their idx entries: 2, 5, 5, 1 with 0, 1, 2, 3
 *  gives 5, 5, 2, 1 with 1, 2, 0, 3. */
BA_API void QSort3(float* v, int* idx, int lo, int hi);

/** Sorts n values in descending order, idx along with them; equal values keep their order. n²
 *  time. */
BA_API void BubSort(int* v, int* idx, int n);

/** The same for floats. */
BA_API void BubSort(float* v, int* idx, int n);
/** @} */

/** @name Small filters
 *
 *  All arithmetic is in single precision unless stated otherwise. Frequencies are in Hz and lie
 *  between 0 and half the sampling rate fs; nothing is checked. Every filter may work in place (out
 *  = in), starts from silence, and does nothing for n ≤ 0.
 *  @{ */

/** One-pole low-pass for filter1: *a = exp(-2πf), *b = 1 - *a.
 *  @param b  receives the weight of the input
 *  @param a  receives the feedback
 *  @param f  cut-off divided by the sampling rate */
BA_API void make_lpf0(float* b, float* a, float f);

/** First-order low-pass for filter1_hat_mono, the bilinear transform of the RC low-pass.
 *  @param fc  cut-off in Hz
 *  @param fs  sampling rate in Hz
 *  @param a   two coefficients: 1 and the feedback
 *  @param b   two coefficients, equal */
BA_API void make_lpf1(float fc, float fs, float* a, float* b);

/** Second-order low-pass for filter2_mono, of the audio equaliser cookbook (R. Bristow-Johnson).
 *  @param fc  cut-off in Hz
 *  @param q   quality factor, not 0
 *  @param fs  sampling rate in Hz
 *  @param c   five coefficients: b0, b1, b2, a1, a2 */
BA_API void make_lpf2(float fc, float q, float fs, float* c);

/** The high-pass of the same family as make_lpf2, with the same arguments. */
BA_API void make_hpf2(float fc, float q, float fs, float* c);

/** out[k] = b in[k] + a out[k - 1], for n samples. */
BA_API void filter1(float* in, float* out, long n, float b, float a);

/** First-order section in direct form II over n samples: coefficients as made by make_lpf1. */
BA_API void filter1_hat_mono(float* in, float* out, int n, float* a, float* b);

/** Second-order section in transposed direct form II over n samples: five coefficients as made by
 *  make_lpf2. */
BA_API void filter2_mono(float* in, float* out, long n, float* c);

/** Does nothing: no argument is looked at. */
BA_API void butter(float*, float*, int, float, char);

/** Does nothing: no argument is looked at. */
BA_API void filter(float*, float*, float*, float*);

/** Does nothing: no argument is looked at. */
BA_API void find_v(float*, float*, float*, float*);
/** @} */

/** @name Fourier transform
 *
 *  Radix-2, in place, on separate arrays of real and imaginary parts, single precision. Lengths are
 *  powers of two from 4 up (and the trivial 1). Any other length gives numbers without meaning.
 *  @{ */

/** Sine table of one period and a quarter: table[k] = sin(2πk / n), so cosines are found n/4
 *  further on.
 *
 *  Made by a rotation recurrence in single precision. n ≤ 0 writes nothing.
 *  @param n      period, a multiple of 4
 *  @param table  room for n + n/4 values; those that a multiple of 4 would set are all set */
BA_API void make_sintbl(int n, float* table);

/** Bit reversal table: table[i] is i with its log2(n) bits in reverse order. n ≤ 0 writes nothing.
 *  @param n      length of the transform
 *  @param table  room for n entries
 *  @return 0, which means nothing */
BA_API int make_bitrev(int n, int* table);

/** Transforms re + i·im in place; neither direction divides by the length.
 *
 *  Forward then inverse gives the input times |n|.
 *  @param n   n > 0: forward, X[f] = Σ x[t] e^(-2πi f t / n), of n points.
 *             n < 0: inverse, with e^(+2πi f t / |n|), of |n| points. 0: nothing.
 *  @param re  |n| values
 *  @param im  |n| values
 *  @return 0; or 1 with "malloc error" on standard error when there is no memory for the tables:
 *          the arrays are as they were then */
BA_API int fft_less_normalize(int n, float* re, float* im);

/** out[i] = sqrt(re[i]² + im[i]²) for n bins. */
BA_API void calc_mag(int n, float* out, float* re, float* im);

/** out[i] = angle of re[i] + i·im[i] in -π … π, for n bins; 0 where both are 0. */
BA_API void calc_phase(int n, float* out, float* re, float* im);
/** @} */
