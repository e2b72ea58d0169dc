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

// A quarter of a window: with a Hann window the aliasing between windows stays below a hundredth.
constexpr int kHop = SpectrumStream::kLength / 4;
constexpr double kHzPerBin =
    static_cast<double>(BandLevels::kFramesPerSecond) / SpectrumStream::kLength;
// Covers 50 Hz, the eighth harmonic of one and a half times 250 BPM.
constexpr int kBins = 352;
constexpr std::size_t kPadding = 8;
constexpr std::array<int, 6> kHarmonics = {1, 2, 3, 4, 6, 8};

std::vector<float> withoutMean(const std::vector<float>& envelope) {
    double sum = 0.0;
    for (const float value : envelope) sum += static_cast<double>(value);
    const double mean = sum / static_cast<double>(envelope.size());
    // Half a window of silence before the start: otherwise the first half window would get less
    // weight.
    std::vector<float> centred(SpectrumStream::kLength / 2);
    centred.reserve(centred.size() + envelope.size());
    for (const float value : envelope)
        centred.push_back(static_cast<float>(static_cast<double>(value) - mean));
    return centred;
}

/** The gain of the window for a frequency up to half a bin away from the centre of a bin. */
double windowGain(double bins) {
    const double angle = std::numbers::pi * bins;
    const double sinc = bins == 0.0 ? 1.0 : std::sin(angle) / angle;
    return sinc / (1.0 - bins * bins);
}

/** Where a frequency lies in the windows' spectra. */
struct Place {
    int bin;        // the nearest bin; kBins: none
    double rounds;  // phase advance from window to window in cycles, without whole ones
    double gain;    // of the window at this frequency
};

Place placeOf(double hz) {
    const double bins = hz / kHzPerBin;
    const double nearest = std::nearbyint(std::clamp(bins, 1.0, double{kBins}));
    const double rounds = bins * kHop / SpectrumStream::kLength;
    return {static_cast<int>(nearest), rounds - std::floor(rounds), windowGain(bins - nearest)};
}

constexpr std::size_t kSums = 8;

/** Complex numbers, one for each of eight sums that do not wait for each other. */
struct Complexes {
    std::array<double, kSums> re{};
    std::array<double, kSums> im{};
};

/** e^(−2πi · rounds · j) for each sum j. */
Complexes firstTurns(double rounds) {
    Complexes turns;
    for (std::size_t j = 0; j < kSums; ++j) {
        const double angle = -2.0 * std::numbers::pi * rounds * static_cast<double>(j);
        turns.re[j] = std::cos(angle);
        turns.im[j] = std::sin(angle);
    }
    return turns;
}

double magnitudeOf(const Complexes& sums) {
    double re = 0.0;
    double im = 0.0;
    for (std::size_t j = 0; j < kSums; ++j) {
        re += sums.re[j];
        im += sums.im[j];
    }
    return std::sqrt(re * re + im * im);
}

/** |Σ value(w) · e^(−2πi · rounds · w)|. */
double magnitudeAt(const std::complex<float>* values, std::size_t count, double rounds) {
    Complexes sums;
    Complexes turns = firstTurns(rounds);
    const double step = -2.0 * std::numbers::pi * rounds * static_cast<double>(kSums);
    const double stepRe = std::cos(step);
    const double stepIm = std::sin(step);
    for (std::size_t w = 0; w < count; w += kSums) {
        const std::size_t taken = std::min(kSums, count - w);
        for (std::size_t j = 0; j < taken; ++j) {
            const auto re = static_cast<double>(values[w + j].real());
            const auto im = static_cast<double>(values[w + j].imag());
            sums.re[j] += re * turns.re[j] - im * turns.im[j];
            sums.im[j] += re * turns.im[j] + im * turns.re[j];
            const double turned = turns.re[j] * stepRe - turns.im[j] * stepIm;
            turns.im[j] = turns.re[j] * stepIm + turns.im[j] * stepRe;
            turns.re[j] = turned;
        }
    }
    return magnitudeOf(sums);
}

}  // namespace

PulseSpectrum::PulseSpectrum(const std::vector<float>& envelope) {
    const std::vector<float> samples = withoutMean(envelope);
    const auto count = static_cast<std::int64_t>(samples.size());
    windows_ = samples.size() / kHop + 3;
    bins_.resize(windows_ * kBins);
    std::size_t window = 0;
    const auto take = [&](const FrameSpectra& spectra, int frames) {
        for (int frame = 0; frame < frames; ++frame, ++window)
            for (int bin = 1; bin < kBins; ++bin)
                bins_[static_cast<std::size_t>(bin) * windows_ + window] = spectra.at(frame, bin);
    };
    SpectrumStream stream(kHop);
    stream.put(samples.data(), count, take);
    stream.finish(static_cast<std::int64_t>(windows_), take);
    bandPoints_ = static_cast<std::int64_t>(std::bit_ceil(kPadding * windows_));
    sineTable_.resize(static_cast<std::size_t>(fft::sineTableLength(bandPoints_)));
    bitReversal_.resize(static_cast<std::size_t>(bandPoints_));
    fft::fillSineTable(bandPoints_, sineTable_.data());
    fft::fillBitReversal(bandPoints_, bitReversal_.data());
}

double PulseSpectrum::at(double hz) {
    const Place place = placeOf(hz);
    if (place.bin == kBins) return 0.0;
    const Magnitudes& band = bandOf(place.bin);
    const double point = place.rounds * static_cast<double>(bandPoints_);
    const auto before = static_cast<std::size_t>(point);
    const double share = point - static_cast<double>(before);
    const double low = band[before % band.size()];
    const double high = band[(before + 1) % band.size()];
    return (low * (1.0 - share) + high * share) / place.gain;
}

double PulseSpectrum::singleAt(double hz) const {
    const Place place = placeOf(hz);
    if (place.bin == kBins) return 0.0;
    const std::complex<float>* values =
        bins_.data() + static_cast<std::size_t>(place.bin) * windows_;
    return magnitudeAt(values, windows_, place.rounds) / place.gain;
}

double PulseSpectrum::pulse(double hz) {
    double sum = 0.0;
    for (const int harmonic : kHarmonics) sum += at(harmonic * hz);
    return sum;
}

double PulseSpectrum::singlePulse(double hz) const {
    double sum = 0.0;
    for (const int harmonic : kHarmonics) sum += singleAt(harmonic * hz);
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
        const std::complex<float> value = bins_[static_cast<std::size_t>(bin) * windows_ + window];
        re[window] = static_cast<double>(value.real());
        im[window] = static_cast<double>(value.imag());
    }
    fft::transform(bandPoints_, false, sineTable_.data(), bitReversal_.data(), re.data(),
                   im.data());
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = std::sqrt(re[i] * re[i] + im[i] * im[i]);
    return re;
}

}  // namespace beatatlas::track::inner
