// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/CArray.h"

namespace beatatlas::fft {

/** The power spectrum of real, finite values: what transform() of fftCore.h gives with imaginary
 *  parts of zero, divided by the length, as squared magnitudes; bit for bit, in every rounding mode
 *  that treats both signs alike.
 *
 *  transform() joins spectra of ever more values, from single ones upward. Of real values the
 *  spectrum is its own mirror image, bin n - b of n the conjugate of bin b: transform() computes
 *  both by operations that differ in signs alone, and the sine table is symmetric to the bit. So
 *  half of each spectrum is enough here, bins 0 … n / 2, the first and the last of them real. What
 *  can differ are the signs of zeros, which no square shows.
 *
 *  While spectra are short, bin b of all of them lies in two rows, one of real and one of imaginary
 *  parts; rows are joined with one twiddle factor, many spectra at a time (realSpectrumEarly.cpp).
 *  When eight spectra are left, their rows are transposed, and the last three stages take
 *  neighbouring bins at a time (realSpectrumLate.cpp).
 *
 *  Memory: half of a sine table and a list of rows beside the table, made in create(). */
class RealSpectrum {
public:
    /** @param size       a power of four from 256 up
     *  @param sineTable  of that size, as fillSineTable() makes it; it must outlive the use
     *  @return false without memory */
    bool create(std::int64_t size, const double* sineTable);

    void release();

    /** 0 without create(). */
    std::int64_t size() const { return size_; }

    /** @param values  size() of them; they are used up
     *  @param power   bins 0 … size() / 2 */
    void run(double* values, double* power) const;

private:
    /** A bin of all spectra at one stage, and where its rows start. */
    struct Rows {
        std::int64_t bin;
        std::int64_t re;
        std::int64_t im;
    };

    struct Factor {
        double cosine;
        double sine;
    };

    template <std::size_t kWidth>
    struct EarlyStages;
    template <std::size_t kWidth>
    struct LateStages;

    static constexpr std::int64_t kLateSpectra = 8;
    // In place of a row of imaginary parts: the bin is real.
    static constexpr std::int64_t kNoRow = -1;

    std::int64_t earlyBins() const { return size_ / kLateSpectra / 2; }
    void layRows();
    void joinEarly(double* values) const;
    void joinLate(const double* values, double* power) const;

    /** For a bin where the next one lies so many entries of the sine table further on. */
    Factor factor(std::int64_t bin, std::int64_t entries) const {
        const double* sine = sineTable_ + (bin * entries);
        return {sine[size_ / 4], *sine};
    }

    std::int64_t size_ = 0;
    const double* sineTable_ = nullptr;
    // Complex bins as they come up: a stage has the first of them.
    CArray<Rows> rows_;
    // Bins 0 … earlyBins() by number, after the early stages.
    CArray<Rows> lateRows_;
    // Of the sine table's entries, as far as sines and cosines reach.
    CArray<double> everySecond_;
    CArray<double> everyFourth_;
};

}  // namespace beatatlas::fft
