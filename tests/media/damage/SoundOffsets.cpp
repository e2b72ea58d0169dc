// SPDX-License-Identifier: MIT
#include "damage/SoundOffsets.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace test {

namespace {

constexpr std::size_t kWindow = 2048;
constexpr std::size_t kHop = 4096;
constexpr std::size_t kThinning = 8;  // for the search; the sound has little above 2 kHz
constexpr double kAlike = 0.8;
constexpr double kLeastEnergy = 1e-3;

/** In place; the length is a power of two. */
void transform(std::vector<std::complex<double>>& values, bool inverse) {
    const std::size_t size = values.size();
    for (std::size_t i = 1, j = 0; i < size; ++i) {
        std::size_t bit = size >> 1;
        for (; (j & bit) != 0; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(values[i], values[j]);
    }
    for (std::size_t length = 2; length <= size; length <<= 1) {
        const double angle =
            (inverse ? 2.0 : -2.0) * std::numbers::pi / static_cast<double>(length);
        const std::complex<double> turn(std::cos(angle), std::sin(angle));
        for (std::size_t begin = 0; begin < size; begin += length) {
            std::complex<double> factor = 1.0;
            for (std::size_t i = begin; i < begin + length / 2; ++i) {
                const auto odd = values[i + length / 2] * factor;
                values[i + length / 2] = values[i] - odd;
                values[i] += odd;
                factor *= turn;
            }
        }
    }
}

}  // namespace

SoundOffsets::SoundOffsets(std::vector<float> whole, int rate)
    : whole_(std::move(whole)), rate_(rate) {
    while (coarseSize_ < whole_.size() / kThinning + kWindow) coarseSize_ *= 2;
    wholeSpectrum_ = coarse(whole_, 0, whole_.size());
}

SoundOffsets::Spectrum SoundOffsets::coarse(const std::vector<float>& sound, std::size_t from,
                                            std::size_t count) const {
    Spectrum values(coarseSize_);
    for (std::size_t i = 0; i + kThinning <= count; ++i)
        values[i / kThinning] += static_cast<double>(sound[from + i]);
    transform(values, false);
    return values;
}

double SoundOffsets::likeness(const std::vector<float>& damaged, std::size_t at, long lag) const {
    const long begin = static_cast<long>(at) - lag;
    if (begin < 0 || static_cast<std::size_t>(begin) + kWindow > whole_.size()) return 0.0;
    const float* a = damaged.data() + at;
    const float* b = whole_.data() + begin;
    double product = 0.0;
    double energyA = 1e-12;
    double energyB = 1e-12;
    for (std::size_t i = 0; i < kWindow; ++i) {
        product += static_cast<double>(a[i]) * static_cast<double>(b[i]);
        energyA += static_cast<double>(a[i]) * static_cast<double>(a[i]);
        energyB += static_cast<double>(b[i]) * static_cast<double>(b[i]);
    }
    if (energyA < kLeastEnergy || !std::isfinite(energyA)) return 0.0;
    return product / std::sqrt(energyA * energyB);
}

std::optional<long> SoundOffsets::refine(const std::vector<float>& damaged, std::size_t at,
                                         long lag) const {
    double best = kAlike;
    std::optional<long> found;
    for (long i = lag - 12; i <= lag + 12; ++i) {
        const double value = likeness(damaged, at, i);
        if (value > best) {
            best = value;
            found = i;
        }
    }
    return found;
}

std::optional<long> SoundOffsets::search(const std::vector<float>& damaged, std::size_t at) const {
    Spectrum values = coarse(damaged, at, kWindow);
    for (std::size_t i = 0; i < coarseSize_; ++i)
        values[i] = wholeSpectrum_[i] * std::conj(values[i]);
    transform(values, true);
    const auto best = std::max_element(values.begin(), values.end(),
                                       [](auto a, auto b) { return a.real() < b.real(); });
    const auto place = static_cast<long>((best - values.begin()) * static_cast<long>(kThinning));
    return refine(damaged, at, static_cast<long>(at) - place);
}

SoundOffsets::Answer SoundOffsets::compare(const std::vector<float>& damaged) const {
    Answer answer;
    std::vector<bool> heard(whole_.size() / kHop + 1);
    long lag = 0;
    int lost = 0;
    for (std::size_t at = 0; at + kWindow <= damaged.size(); at += kHop) {
        std::optional<long> found;
        if (likeness(damaged, at, 0) > 0.98) found = 0;
        if (!found && likeness(damaged, at, lag) > 0.98) found = lag;
        if (!found && (lost < 8 || lost % 8 == 0)) {
            found = refine(damaged, at, lag);
            if (!found) found = refine(damaged, at, 0);
            if (!found) found = search(damaged, at);
        }
        lost = found ? 0 : lost + 1;
        if (!found) continue;
        lag = *found;
        answer.last = std::abs(static_cast<double>(lag)) / rate_;
        answer.worst = std::max(answer.worst, answer.last);
        heard[(at - static_cast<std::size_t>(lag)) / kHop] = true;
    }
    answer.heard = static_cast<double>(std::count(heard.begin(), heard.end(), true)) /
                   (static_cast<double>(whole_.size() - kWindow) / kHop);
    answer.missing = (static_cast<double>(whole_.size()) - static_cast<double>(damaged.size())) /
                     static_cast<double>(rate_);
    return answer;
}

}  // namespace test
