// SPDX-License-Identifier: MIT
#include "dsp/FrameTransform.h"

#include <algorithm>

#include "dsp/fftCore.h"
#include "dsp/lanes/transpose.h"
#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

/** Rows of points to and from lanes of frames; lanes that have no frame share one, and nothing of
 *  theirs is taken back. */
struct Rows {
    float* values;
    std::ptrdiff_t stride;
    std::ptrdiff_t count;
    std::ptrdiff_t length;

    BEATATLAS_LANES float* row(std::ptrdiff_t f) const {
        return values + (std::min(f, count - 1) * stride);
    }
};

/** Each point goes to its bit-reversed position. */
BEATATLAS_LANES void layOut(const Rows& rows, const int* bitReversal, std::ptrdiff_t lanes,
                            float* laidOut) {
    for (std::ptrdiff_t f = 0; f < lanes; f += 4) {
        std::ptrdiff_t i = 0;
        for (; i + 4 <= rows.length; i += 4) {
            const float* from[4];
            float* to[4];
            for (std::ptrdiff_t j = 0; j < 4; ++j) {
                from[j] = rows.row(f + j) + i;
                to[j] = laidOut + (bitReversal[i + j] * lanes) + f;
            }
            transposeFour(from, to);
        }
        for (; i < rows.length; ++i)
            for (std::ptrdiff_t j = 0; j < 4; ++j)
                laidOut[(bitReversal[i] * lanes) + f + j] = rows.row(f + j)[i];
    }
}

BEATATLAS_LANES void takeBack(const float* laidOut, std::ptrdiff_t lanes, const Rows& rows) {
    for (std::ptrdiff_t f = 0; f < rows.count; f += 4) {
        std::ptrdiff_t i = 0;
        for (; f + 4 <= rows.count && i + 4 <= rows.length; i += 4) {
            const float* from[4];
            float* to[4];
            for (std::ptrdiff_t j = 0; j < 4; ++j) {
                from[j] = laidOut + ((i + j) * lanes) + f;
                to[j] = rows.row(f + j) + i;
            }
            transposeFour(from, to);
        }
        const std::ptrdiff_t end = std::min(f + 4, rows.count);
        for (; i < rows.length; ++i)
            for (std::ptrdiff_t j = f; j < end; ++j) rows.row(j)[i] = laidOut[(i * lanes) + j];
    }
}

/** The points of all lanes at one position. */
template <class Vector>
struct Point {
    Vector re;
    Vector im;

    BEATATLAS_LANES void load(const float* fromRe, const float* fromIm) {
        loadLanes(re, fromRe);
        loadLanes(im, fromIm);
    }
    BEATATLAS_LANES void store(float* toRe, float* toIm) const {
        storeLanes(re, toRe);
        storeLanes(im, toIm);
    }
};

/** The butterfly of the plain form on its points i and i + k. */
template <class Vector>
BEATATLAS_LANES void rotate(float c, float s, Point<Vector>& near, Point<Vector>& far) {
    const Vector dx = (c * far.re) + (s * far.im);
    const Vector dy = (c * far.im) - (s * far.re);
    far.re = near.re - dx;
    near.re = near.re + dx;
    far.im = near.im - dy;
    near.im = near.im + dy;
}

}  // namespace

FrameTransform::FrameTransform(int length)
    : length_(length), sineTable_(static_cast<std::size_t>(fft::sineTableLength(length))),
      bitReversal_(static_cast<std::size_t>(length)),
      laidOut_(2 * static_cast<std::size_t>(length) * kFramesAtOnce) {
    fft::fillSineTable<float>(length, sineTable_.data());
    fft::fillBitReversal(length, bitReversal_.data());
}

template <std::size_t kWidth>
struct FrameTransform::FrameLanes {
    using Vector = Lanes<float, 2 * kWidth>;
    static constexpr std::ptrdiff_t kLanes = 2 * kWidth;

    BEATATLAS_LANES static void run(const FrameTransform* t, bool inverse, float* re, float* im,
                                    std::ptrdiff_t stride, int count) {
        float* laidRe = t->laidOut_.data();
        float* laidIm = laidRe + (t->length_ * kLanes);
        for (std::ptrdiff_t first = 0; first < count; first += kLanes) {
            const std::ptrdiff_t frames = std::min(kLanes, count - first);
            const Rows reRows{re + (first * stride), stride, frames, t->length_};
            const Rows imRows{im + (first * stride), stride, frames, t->length_};
            layOut(reRows, t->bitReversal_.data(), kLanes, laidRe);
            layOut(imRows, t->bitReversal_.data(), kLanes, laidIm);
            std::ptrdiff_t k = 1;
            for (; 2 * k < t->length_; k *= 4) twoStages(*t, inverse, k, laidRe, laidIm);
            if (k < t->length_) lastStage(*t, inverse, laidRe, laidIm);
            takeBack(laidRe, kLanes, reRows);
            takeBack(laidIm, kLanes, imRows);
        }
    }

    BEATATLAS_LANES static float sineAt(const FrameTransform& t, bool inverse, std::ptrdiff_t h) {
        const float s = t.sineTable_[static_cast<std::size_t>(h)];
        return inverse ? -s : s;
    }
    BEATATLAS_LANES static float cosineAt(const FrameTransform& t, std::ptrdiff_t h) {
        return t.sineTable_[static_cast<std::size_t>(h + (t.length_ / 4))];
    }

    /** The stages k and 2k: four points at a time take part in both and stay in registers
     *  between. */
    BEATATLAS_LANES static void twoStages(const FrameTransform& t, bool inverse, std::ptrdiff_t k,
                                          float* re, float* im) {
        const std::ptrdiff_t step = t.length_ / (4 * k);  // of the second; the first takes two
        for (std::ptrdiff_t first = 0; first < t.length_; first += 4 * k) {
            for (std::ptrdiff_t j = 0; j < k; ++j) {
                Point<Vector> p[4];
                const std::ptrdiff_t at = (first + j) * kLanes;
                const std::ptrdiff_t apart = k * kLanes;
                for (std::ptrdiff_t i = 0; i < 4; ++i)
                    p[i].load(re + at + (i * apart), im + at + (i * apart));
                const float c = cosineAt(t, 2 * j * step);
                const float s = sineAt(t, inverse, 2 * j * step);
                rotate(c, s, p[0], p[1]);
                rotate(c, s, p[2], p[3]);
                rotate(cosineAt(t, j * step), sineAt(t, inverse, j * step), p[0], p[2]);
                rotate(cosineAt(t, (j + k) * step), sineAt(t, inverse, (j + k) * step), p[1], p[3]);
                for (std::ptrdiff_t i = 0; i < 4; ++i)
                    p[i].store(re + at + (i * apart), im + at + (i * apart));
            }
        }
    }

    /** Of an odd number of stages: halves of the frame against each other. */
    BEATATLAS_LANES static void lastStage(const FrameTransform& t, bool inverse, float* re,
                                          float* im) {
        const std::ptrdiff_t half = t.length_ / 2;
        for (std::ptrdiff_t j = 0; j < half; ++j) {
            Point<Vector> near;
            Point<Vector> far;
            const std::ptrdiff_t a = j * kLanes;
            const std::ptrdiff_t b = (j + half) * kLanes;
            near.load(re + a, im + a);
            far.load(re + b, im + b);
            rotate(cosineAt(t, j), sineAt(t, inverse, j), near, far);
            near.store(re + a, im + a);
            far.store(re + b, im + b);
        }
    }
};

void FrameTransform::run(bool inverse, float* re, float* im, std::ptrdiff_t stride,
                         int count) const {
    runInLanes<FrameLanes>(this, inverse, re, im, stride, count);
}

}  // namespace beatatlas
