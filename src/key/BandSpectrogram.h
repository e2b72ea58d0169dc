// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

namespace beatatlas {

/** Magnitudes of every semitone band in every analysis frame.
 *
 *  Rows that were never written read as silence, also rows beyond those allocated: a pre-check may
 *  count more frames than the track was declared to have. What is written beyond them is
 *  dropped. */
class BandSpectrogram {
public:
    /** Silence in rows × bands values; rows ≤ 0: none. Throws std::bad_alloc. */
    void create(int rows, int bands);
    void release();

    int bands() const { return bands_; }

    /** The bands of one row, row ≥ 0. */
    const double* row(int row) const;

    /** @param magnitudes  bands() values */
    void write(int row, const double* magnitudes);

private:
    std::size_t offset(int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(bands_);
    }

    int rows_ = 0;
    int bands_ = 0;
    std::unique_ptr<double[]> values_;
    std::unique_ptr<double[]> silence_;  // one row
};

}  // namespace beatatlas
