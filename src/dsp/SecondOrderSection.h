// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>

#include "dsp/isConstant.h"

namespace beatatlas {

/** One second-order recursive section in double: coefficients, and the last two inputs and outputs.
 *
 *  Designs follow Robert Bristow-Johnson's audio EQ cookbook; a new section passes its input
 *  through. The state carries across blocks, so any cutting of a signal into blocks gives the same
 *  output. */
struct SecondOrderSection {
    double b0 = 1.0;
    double b1 = 0.0;
    double b2 = 0.0;
    /** Divided out of the others by every design. */
    double a0 = 1.0;
    double a1 = 0.0;
    double a2 = 0.0;
    double x2 = 0.0;
    double x1 = 0.0;
    double y2 = 0.0;
    double y1 = 0.0;

    /** @param cosine  cosine of the corner's angular frequency in radians per sample
     *  @param alpha   sine of the same angle over twice the quality factor */
    void designLowPass(double cosine, double alpha) {
        const double norm = 1.0 + alpha;
        b0 = 0.5 * (1.0 - cosine) / norm;
        b1 = (1.0 - cosine) / norm;
        b2 = b0;
        designFeedback(cosine, alpha);
    }

    /** Arguments as for designLowPass(). */
    void designHighPass(double cosine, double alpha) {
        const double norm = 1.0 + alpha;
        b0 = 0.5 * (cosine + 1.0) / norm;
        b1 = -(cosine + 1.0) / norm;
        b2 = b0;
        designFeedback(cosine, alpha);
    }

    /** The part that all second-order designs share: the poles. */
    void designFeedback(double cosine, double alpha) {
        const double norm = 1.0 + alpha;
        a0 = 1.0;
        a1 = -2.0 * cosine / norm;
        a2 = (1.0 - alpha) / norm;
    }

    /** Filters one block; `in` and `out` must not overlap. Nothing happens for len ≤ 0. */
    void operate(const double* in, double* out, int len) {
        if (len > 1 && isConstant(in, len) && restsAt(in[0])) {
            std::fill_n(out, len, y1);
            return;
        }
        const SecondOrderSection c = *this;
        double inOneBack = x1;
        double inTwoBack = x2;
        double outOneBack = y1;
        double outTwoBack = y2;
        for (int n = 0; n < len; ++n) {
            const double x = in[n];
            const double feedForward = ((c.b0 * x + c.b1 * inOneBack) + c.b2 * inTwoBack);
            const double y = (feedForward - c.a1 * outOneBack) - c.a2 * outTwoBack;
            inTwoBack = inOneBack;
            inOneBack = x;
            outTwoBack = outOneBack;
            outOneBack = y;
            out[n] = y;
        }
        x1 = inOneBack;
        x2 = inTwoBack;
        y1 = outOneBack;
        y2 = outTwoBack;
    }

    /** Whether the section took x twice and gave the same value twice, to the bit, and would give
     *  it again. It then goes on doing so for as long as x lasts. In silence every section comes to
     *  that: what feeds back becomes too small to shrink, and very slow to compute. */
    bool restsAt(double x) const {
        SecondOrderSection after = *this;
        return sameBits(x1, x) && sameBits(x2, x) && sameBits(y1, y2) &&
               sameBits(after.step(x), y1);
    }

    /** One sample, as operate() takes it. */
    double step(double x) {
        const double feedForward = ((b0 * x + b1 * x1) + b2 * x2);
        const double y = (feedForward - a1 * y1) - a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

/** first.operate(), `between` of each sample, then second.operate(): the same values in one pass.
 *  in(n) is sample n, out(n, y) takes what it becomes; in() is asked for some samples more than
 *  once.
 *
 *  A section waits for its own last output, and so does the second; taken together, the processor
 *  works on the one while the other waits, and on in() and out() besides. */
template <class In, class Between, class Out>
void operateInTurn(SecondOrderSection& first, Between between, SecondOrderSection& second, In in,
                   Out out, int len) {
    if (len <= 0) return;
    int same = 1;
    while (same < len && sameBits<double>(in(same), in(0))) ++same;
    if (same == len && first.restsAt(in(0)) && second.restsAt(between(first.y1))) {
        for (int n = 0; n < len; ++n) out(n, second.y1);
        return;
    }
    SecondOrderSection a = first;
    SecondOrderSection b = second;
    for (int n = 0; n < len; ++n) out(n, b.step(between(a.step(in(n)))));
    first = a;
    second = b;
}

}  // namespace beatatlas
