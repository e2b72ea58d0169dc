// SPDX-License-Identifier: MIT
#include "track/tempo/PulseSpectrum.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "dsp/fftCore.h"
#include "track/evidence/BandLevels.h"
#include "track/evidence/SpectrumStream.h"

namespace beatatlas::track::inner {

namespace {

// A quarter of a window: what a Hann window leaves of frequencies that the cutting folds onto each other is below a
// hundredth.
constexpr int kHop = FrameSpectra::kLength / 4;
constexpr double kHzPerBin =
    static_cast<double>(BandLevels::kFramesPerSecond) / FrameSpectra::kLength;
// Up to 50 Hz: the eighth harmonic of 250 beats a minute and a half.
constexpr int kBins = 352;
constexpr std::size_t kPadding = 8;
constexpr std::array<int, 6> kHarmonics = {1, 2, 3, 4, 6, 8};

std::vector<float> withoutMean(const std::vector<float>& envelope) {
    double sum = 0.0;
    for (const float value : envelope) sum += static_cast<double>(value);
    const double mean = sum / static_cast<double>(envelope.size());
    // Half a window of silence before: otherwise the first half of the first window would count less.
    std::vector<float> centred(FrameSpectra::kLength / 2);
    centred.reserve(centred.size() + envelope.size());
    for (const float value : envelope)
        centred.push_back(static_cast<float>(static_cast<double>(value) - mean));
    return centred;
}

/** What a window lets through of a frequency so many bins from the middle of one, at most a half. */
double windowGain(double bins) {
    const double angle = std::numbers::pi * bins;
    const double sinc = bins == 0.0 ? 1.0 : std::sin(angle) / angle;
    return sinc / (1.0 - bins * bins);
}

}  // namespace

PulseSpectrum::PulseSpectrum(const std::vector<float>& envelope) {
    const std::vector<float> samples = withoutMean(envelope);
    const auto count = static_cast<std::int64_t>(samples.size());
    const std::int64_t windows = (count + FrameSpectra::kLength / 2) / kHop + 1;
    bins_.reserve(static_cast<std::size_t>(windows * kBins));
    const auto take = [this](const FrameSpectra& spectra, int frames) {
        for (int frame = 0; frame < frames; ++frame)
            for (int bin = 0; bin < kBins; ++bin)
                bins_.push_back(bin == 0 ? 0.0F : spectra.at(frame, bin));
    };
    SpectrumStream stream(kHop);
    stream.put(samples.data(), count, take);
    stream.finish(windows, take);
    windows_ = bins_.size() / kBins;
    bandPoints_ = static_cast<std::int64_t>(std::bit_ceil(kPadding * windows_));
    sineTable_.resize(static_cast<std::size_t>(fft::sineTableLength(bandPoints_)));
    bitReversal_.resize(static_cast<std::size_t>(bandPoints_));
    fft::fillSineTable(bandPoints_, sineTable_.data());
    fft::fillBitReversal(bandPoints_, bitReversal_.data());
}

double PulseSpectrum::at(double hz) {
    const double bin = hz / kHzPerBin;
    const int nearest = static_cast<int>(std::nearbyint(std::clamp(bin, 1.0, double{kBins})));
    if (nearest == kBins) return 0.0;
    const Magnitudes& band = bandOf(nearest);
    // From window to window a frequency turns by so many rounds, of which whole ones cannot be seen.
    const double rounds = bin * kHop / FrameSpectra::kLength;
    const double place = (rounds - std::floor(rounds)) * static_cast<double>(bandPoints_);
    const auto before = static_cast<std::size_t>(place);
    const double share = place - static_cast<double>(before);
    const double low = band[before % band.size()];
    const double high = band[(before + 1) % band.size()];
    return (low * (1.0 - share) + high * share) / windowGain(bin - nearest);
}

double PulseSpectrum::pulse(double hz) {
    double sum = 0.0;
    for (const int harmonic : kHarmonics) sum += at(harmonic * hz);
    return sum;
}

const PulseSpectrum::Magnitudes& PulseSpectrum::bandOf(int bin) {
    const auto found = bands_.find(bin);
    if (found != bands_.end()) return found->second;
    return bands_.emplace(bin, makeBand(bin)).first->second;
}

PulseSpectrum::Magnitudes PulseSpectrum::makeBand(int bin) const {
    std::vector<double> re(static_cast<std::size_t>(bandPoints_));
    std::vector<double> im(re.size());
    for (std::size_t window = 0; window < windows_; ++window) {
        const std::complex<float> value = bins_[window * kBins + static_cast<std::size_t>(bin)];
        re[window] = static_cast<double>(value.real());
        im[window] = static_cast<double>(value.imag());
    }
    fft::transform(bandPoints_, false, sineTable_.data(), bitReversal_.data(), re.data(),
                   im.data());
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = std::sqrt(re[i] * re[i] + im[i] * im[i]);
    return re;
}

}  // namespace beatatlas::track::inner
