// SPDX-License-Identifier: MIT
#include "dsp/IirPassFilter.h"

#include <cstddef>
#include <utility>

namespace beatatlas {

template <typename Design>
void IirPassFilter::createStages(std::int32_t count, Design design) {
    auto fresh = std::make_unique<IirFilter[]>(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) design(fresh[static_cast<std::size_t>(i)], i);
    stages_ = std::move(fresh);
    stageCount_ = count;
}

void IirPassFilter::createThroughFilter() {
    createStages(2, [](IirFilter& stage, int) { stage.createThroughFilter(); });
}

void IirPassFilter::createHiPathFilter(float freq, float sampleRate, float q) {
    createStages(2, [=](IirFilter& stage, int) { stage.createHiPathFilter(freq, sampleRate, q); });
}

void IirPassFilter::createLowPathFilter(float freq, float sampleRate, float q) {
    createStages(2, [=](IirFilter& stage, int) { stage.createLowPathFilter(freq, sampleRate, q); });
}

namespace {

/** Sections 0, 2, … of a cascade are high-pass, the others low-pass. */
auto alternatingCorners(float lowFreq, float highFreq, float sampleRate, float q) {
    return [=](IirFilter& stage, int section) {
        if (section % 2 == 0) {
            stage.createHiPathFilter(lowFreq, sampleRate, q);
        } else {
            stage.createLowPathFilter(highFreq, sampleRate, q);
        }
    };
}

}  // namespace

void IirPassFilter::createMidPathFilterB(float lowFreq, float highFreq, float sampleRate, float q) {
    createStages(4, alternatingCorners(lowFreq, highFreq, sampleRate, q));
}

void IirPassFilter::createMidPathFilterM(float lowFreq, float highFreq, float sampleRate, float q) {
    createStages(2, alternatingCorners(lowFreq, highFreq, sampleRate, q));
}

void IirPassFilter::createBandPathFilterW(float freq, float sampleRate, float bandwidth) {
    createStages(2, [=](IirFilter& stage, int) {
        stage.createBandPathFilterW(freq, sampleRate, bandwidth);
    });
}

void IirPassFilter::createBandPathFilterQ(float freq, float sampleRate, float q) {
    createStages(2,
                 [=](IirFilter& stage, int) { stage.createBandPathFilterQ(freq, sampleRate, q); });
}

void IirPassFilter::growWorkBuffers(std::int32_t len) {
    if (workCapacity_ >= len) return;
    auto a = std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(len));
    auto b = std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(len));
    workA_ = std::move(a);
    workB_ = std::move(b);
    workCapacity_ = len;
}

void IirPassFilter::operate(const float* in, float* out, int len) {
    if (len <= 0) return;
    growWorkBuffers(len);
    double* from = workA_.get();
    double* to = workB_.get();
    for (int i = 0; i < len; ++i) from[i] = static_cast<double>(in[i]);
    for (std::int32_t stage = 0; stage < stageCount_; ++stage) {
        stages_[static_cast<std::size_t>(stage)].operate(from, to, len);
        std::swap(from, to);
    }
    for (int i = 0; i < len; ++i) out[i] = static_cast<float>(from[i]);
}

}  // namespace beatatlas
