// SPDX-License-Identifier: MIT
#include "peakss/sensing/SensorFilters.h"

#include <cmath>

#include "peakss/sensing/designBands.h"

namespace peakss {

namespace {

bool haveBank(int bands) {
    return bands == 4 || bands == 6;
}

void rectify(float* samples, int n) {
    for (int i = 0; i < n; ++i) samples[i] = std::fabs(samples[i]);
}

}  // namespace

int SensorFilters::filteredBands(int bands) {
    return bands == 6 ? 4 : bands;
}

void SensorFilters::create(float rate, int blockLen, int bands) {
    release();
    blockLen_ = static_cast<std::size_t>(blockLen);
    const auto count = static_cast<std::size_t>(filteredBands(bands));
    samples_.resize((count + 1) * blockLen_);
    for (std::size_t b = 0; b < count; ++b) bands_.push_back(samples_.data() + b * blockLen_);
    if (haveBank(bands)) {
        designSensorBank(bank_.emplace(), rate);
    } else {
        filters_ = std::make_unique<beatatlas::IirPassFilter[]>(count);
        designFilters(filters_.get(), bands, rate);
    }
}

void SensorFilters::release() {
    samples_ = {};
    bands_ = {};
    bank_.reset();
    filters_.reset();
}

BandSignals SensorFilters::operate(const float* chunk, int n, bool forView) {
    if (!bank_) {
        filterEachBand(chunk, n);
        return {bands_.data(), nullptr};
    }
    float* viewLow = forView ? samples_.data() + bands_.size() * blockLen_ : nullptr;
    bank_->operate(chunk, sensorBankOutputs({bands_.data(), viewLow}), n);
    return {bands_.data(), viewLow};
}

void SensorFilters::filterEachBand(const float* chunk, int n) {
    for (std::size_t b = 0; b < bands_.size(); ++b) {
        filters_[b].operate(chunk, bands_[b], n);
        rectify(bands_[b], n);
    }
}

}  // namespace peakss
