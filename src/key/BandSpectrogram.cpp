// SPDX-License-Identifier: MIT
#include "key/BandSpectrogram.h"

#include <algorithm>

namespace beatatlas {

void BandSpectrogram::create(int rows, int bands) {
    release();
    bands_ = bands;
    silence_ = std::make_unique<double[]>(offset(1));
    const int allocated = std::max(rows, 0);
    values_ = std::make_unique<double[]>(offset(allocated));
    rows_ = allocated;
}

void BandSpectrogram::release() {
    rows_ = 0;
    bands_ = 0;
    values_.reset();
    silence_.reset();
}

const double* BandSpectrogram::row(int row) const {
    return row < rows_ ? values_.get() + offset(row) : silence_.get();
}

void BandSpectrogram::write(int row, const double* magnitudes) {
    if (row < rows_) std::copy_n(magnitudes, bands_, values_.get() + offset(row));
}

}  // namespace beatatlas
