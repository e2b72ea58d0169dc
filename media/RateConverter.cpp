// SPDX-License-Identifier: MIT
#include "media/RateConverter.h"

#include <array>
#include <cmath>
#include <string>

#include <soxr.h>

#include "base/errors.h"

namespace media {

namespace {

constexpr int kCdRate = 44100;
constexpr int kStudioRate = 48000;
constexpr std::size_t kSpareFrames = 4096;

[[noreturn]] void refuseRate(int rate) {
    throw base::TrackError("has a sample rate of " + std::to_string(rate) +
                           " Hz, which cannot be converted");
}

}  // namespace

int sessionRateFor(int trackRate) {
    for (const int relative : {kCdRate / 4, kCdRate / 2, kCdRate, kCdRate * 2, kCdRate * 4}) {
        if (trackRate == relative) return kCdRate;
    }
    return kStudioRate;
}

void requireConvertible(int rate) {
    if (rate < kLowestRate || rate > kHighestRate) refuseRate(rate);
}

std::int64_t convertedFrames(std::int64_t frames, int fromRate, int toRate) {
    const double ratio = static_cast<double>(fromRate) / static_cast<double>(toRate);
    return static_cast<std::int64_t>(static_cast<double>(frames) / ratio + 0.5);
}

RateConverter::RateConverter(int fromRate, int toRate)
    : ratio_(static_cast<double>(toRate) / static_cast<double>(fromRate)) {
    requireConvertible(fromRate);
    soxr_error_t failure = nullptr;
    const soxr_io_spec_t planes = soxr_io_spec(SOXR_FLOAT32_S, SOXR_FLOAT32_S);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    state_.reset(soxr_create(fromRate, toRate, 2, &failure, &planes, &quality, nullptr));
    if (failure != nullptr || !state_) refuseRate(fromRate);
}

RateConverter::~RateConverter() = default;

void RateConverter::StateDelete::operator()(soxr* state) const {
    soxr_delete(state);
}

StereoBlock& RateConverter::convert(const StereoBlock& input) {
    output_.resize(0);
    std::size_t taken = 0;
    do {
        taken += step(&input, taken);
    } while (taken < input.frames() || outputWasFull_);
    return output_;
}

StereoBlock& RateConverter::finish() {
    output_.resize(0);
    do {
        step(nullptr, 0);
    } while (outputWasFull_);
    return output_;
}

std::size_t RateConverter::step(const StereoBlock* input, std::size_t taken) {
    const std::size_t offered = input == nullptr ? 0 : input->frames() - taken;
    const std::size_t filled = output_.frames();
    const std::size_t room = roomFor(offered);
    output_.resize(filled + room);

    std::array<const float*, 2> sources{};
    if (input != nullptr) sources = {input->left.data() + taken, input->right.data() + taken};
    std::array<float*, 2> targets = {output_.left.data() + filled, output_.right.data() + filled};
    std::size_t used = 0;
    std::size_t produced = 0;
    const soxr_error_t failure =
        soxr_process(state_.get(), input == nullptr ? nullptr : sources.data(), offered, &used,
                     targets.data(), room, &produced);
    if (failure != nullptr)
        throw base::TrackError(std::string("cannot be converted to another rate: ") + failure);
    output_.resize(filled + produced);
    outputWasFull_ = produced == room;
    return used;
}

std::size_t RateConverter::roomFor(std::size_t inputFrames) const {
    return static_cast<std::size_t>(std::ceil(static_cast<double>(inputFrames) * ratio_)) +
           kSpareFrames;
}

}  // namespace media
