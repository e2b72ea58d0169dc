// SPDX-License-Identifier: MIT
// Method: a tempogram and the best path through it, as in G. Peeters, "Template-based estimation of
// time-varying tempo" (2007).
//   1. the spectrum of the onsets in windows of eight seconds, two seconds apart
//   2. for each of 121 tempi around that of the track, the strength of its first four harmonics in
//      each window
//   3. the path from window to window with the greatest sum of strengths, less a cost for each
//      change of tempo
#include "track/tempo/LocalTempo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "track/evidence/FrameSpectra.h"
#include "track/evidence/OnsetEnvelopes.h"
#include "track/tempo/median.h"

namespace beatatlas::track::inner {

namespace {

constexpr std::size_t kWindowFrames = 1200;
constexpr std::size_t kHopFrames = 300;
constexpr int kPoints = 8192;
constexpr double kBinsPerHz = kPoints / OnsetEnvelopes::kFramesPerSecond;
constexpr std::size_t kTempi = 121;
constexpr double kReach = 0.30;  // of the logarithm, on either side
constexpr double kTempoStep = 2.0 * kReach / (kTempi - 1);
// A tempo that is off by a tenth costs a fifth of a window's mean strength.
constexpr double kPriceOfDistance = 2.0;
// A change of a tenth between neighbouring windows costs three times the mean strength; no change
// costs more than six times.
constexpr double kPriceOfStep = 30.0 * kTempoStep;
constexpr double kMostPrice = 6.0;
constexpr std::array<int, 4> kHarmonics = {1, 2, 3, 4};
// 0.5 to 16 Hz: the frequencies of rhythms.
constexpr std::size_t kFirstRhythmBin = 28;
constexpr std::size_t kEndOfRhythmBins = 874;
constexpr double kTiny = 1e-9;

using Row = std::array<double, kTempi>;

double logTempo(std::size_t tempo) {
    return -kReach + kTempoStep * static_cast<double>(tempo);
}

/** The strength of each tempo in a window. */
struct View {
    Row strengths{};  // of all its harmonics together
    Row standings{};  // of the strongest harmonic, relative to the window's usual magnitude
};

/** The onsets without their mean, padded with silence to fill the last window. */
std::vector<float> windowsOf(const std::vector<float>& envelope, std::size_t windows) {
    double sum = 0.0;
    for (const float value : envelope) sum += static_cast<double>(value);
    const auto mean = static_cast<float>(sum / static_cast<double>(envelope.size()));
    std::vector<float> centred(
        std::max(envelope.size(), (windows - 1) * kHopFrames + kWindowFrames));
    for (std::size_t i = 0; i < envelope.size(); ++i) centred[i] = envelope[i] - mean;
    return centred;
}

double magnitudeNear(const std::vector<double>& magnitudes, double bin) {
    const auto before = static_cast<std::size_t>(bin);
    if (before + 1 >= magnitudes.size()) return 0.0;
    const double share = bin - static_cast<double>(before);
    return magnitudes[before] * (1.0 - share) + magnitudes[before + 1] * share;
}

double usualMagnitude(const std::vector<double>& magnitudes) {
    double squares = 0.0;
    for (std::size_t bin = kFirstRhythmBin; bin < kEndOfRhythmBins; ++bin)
        squares += magnitudes[bin] * magnitudes[bin];
    return std::sqrt(squares / (kEndOfRhythmBins - kFirstRhythmBin)) + kTiny;
}

View viewOf(const std::vector<double>& magnitudes, const Row& tempi) {
    View view;
    const double usual = usualMagnitude(magnitudes);
    const auto last = static_cast<double>(magnitudes.size() - 1);
    for (std::size_t tempo = 0; tempo < kTempi; ++tempo) {
        double most = 0.0;
        for (const int harmonic : kHarmonics) {
            const double bin = tempi[tempo] * harmonic * kBinsPerHz;
            view.strengths[tempo] += magnitudeNear(magnitudes, bin);
            const double nearest = std::min(std::floor(bin + 0.5), last);
            most = std::max(most, magnitudes[static_cast<std::size_t>(nearest)]);
        }
        view.standings[tempo] = most / usual;
    }
    return view;
}

/** How many bins are needed: up to the highest harmonic of any tempo and to the end of the rhythm
 *  range. */
int binsFor(const Row& tempi) {
    const double harmonics = tempi.back() * kHarmonics.back() * kBinsPerHz;
    const double wanted = std::max(harmonics, double{kEndOfRhythmBins}) + 2.0;
    constexpr double kMost = kPoints / 2;
    return static_cast<int>(std::min(wanted / 16.0 + 1.0, kMost / 16.0)) * 16;
}

std::vector<View> viewsOf(const std::vector<float>& envelope, const Row& tempi) {
    const std::size_t frames = envelope.size();
    const std::size_t span = frames > kWindowFrames / 2 ? frames - kWindowFrames / 2 : 1;
    const std::size_t windows = (span + kHopFrames - 1) / kHopFrames;
    const std::vector<float> samples = windowsOf(envelope, windows);
    const int bins = binsFor(tempi);
    FrameSpectra spectra(kPoints, symmetricHann(kWindowFrames));
    std::array<std::ptrdiff_t, FrameSpectra::kFrames> starts{};
    std::array<std::vector<float>, 2> powers;
    powers.fill(std::vector<float>(static_cast<std::size_t>(bins)));
    std::vector<double> magnitudes(static_cast<std::size_t>(bins));
    std::vector<View> views;
    views.reserve(windows);
    while (views.size() < windows) {
        const std::size_t first = views.size();
        const std::size_t count = std::min(starts.size(), windows - first);
        for (std::size_t w = 0; w < count; ++w)
            starts[w] = static_cast<std::ptrdiff_t>((first + w) * kHopFrames);
        spectra.transform(samples.data(), starts.data(), static_cast<int>(count));
        for (std::size_t w = 0; w < count; ++w) {
            if (w % 2 == 0)
                spectra.powers(static_cast<int>(w / 2), bins, powers[0].data(), powers[1].data());
            for (std::size_t bin = 0; bin < magnitudes.size(); ++bin)
                magnitudes[bin] = std::sqrt(static_cast<double>(powers[w % 2][bin]));
            views.push_back(viewOf(magnitudes, tempi));
        }
    }
    return views;
}

/** The tempo in the window before from which the best path to each tempo comes. The cost of a step
 *  is proportional to its length, so the best source is passed on between neighbouring tempi,
 *  upward and downward; or it is the best tempo of all. */
std::array<std::uint8_t, kTempi> bestSources(const Row& sums, Row& best) {
    std::array<std::uint8_t, kTempi> from;
    const auto take = [&](std::size_t tempo, std::size_t source, double sum) {
        if (sum <= best[tempo]) return;
        best[tempo] = sum;
        from[tempo] = static_cast<std::uint8_t>(source);
    };
    for (std::size_t tempo = 0; tempo < kTempi; ++tempo) {
        best[tempo] = sums[tempo];
        from[tempo] = static_cast<std::uint8_t>(tempo);
        if (tempo > 0) take(tempo, from[tempo - 1], best[tempo - 1] - kPriceOfStep);
    }
    for (std::size_t tempo = kTempi - 1; tempo-- > 0;)
        take(tempo, from[tempo + 1], best[tempo + 1] - kPriceOfStep);
    const auto most = std::max_element(sums.begin(), sums.end());
    for (std::size_t tempo = 0; tempo < kTempi; ++tempo)
        take(tempo, static_cast<std::size_t>(most - sums.begin()), *most - kMostPrice);
    return from;
}

std::vector<std::size_t> bestPath(const std::vector<View>& views) {
    std::vector<std::array<std::uint8_t, kTempi>> sources;
    Row sums = views.front().strengths;
    for (std::size_t w = 1; w < views.size(); ++w) {
        Row best;
        sources.push_back(bestSources(sums, best));
        for (std::size_t tempo = 0; tempo < kTempi; ++tempo)
            sums[tempo] = best[tempo] + views[w].strengths[tempo];
    }
    std::vector<std::size_t> path(views.size());
    path.back() =
        static_cast<std::size_t>(std::max_element(sums.begin(), sums.end()) - sums.begin());
    for (std::size_t w = path.size() - 1; w > 0; --w) path[w - 1] = sources[w - 1][path[w]];
    return path;
}

/** Divides the strengths by their overall mean and subtracts the cost of the distance from the
 *  track's tempo. */
void weigh(std::vector<View>& views) {
    double sum = 0.0;
    for (const View& view : views)
        for (const double strength : view.strengths) sum += strength;
    const double mean = sum / static_cast<double>(views.size() * kTempi) + kTiny;
    for (View& view : views)
        for (std::size_t tempo = 0; tempo < kTempi; ++tempo)
            view.strengths[tempo] =
                view.strengths[tempo] / mean - kPriceOfDistance * std::abs(logTempo(tempo));
}

}  // namespace

LocalTempo followTempo(const std::vector<float>& envelope, double hz) {
    Row tempi;
    for (std::size_t tempo = 0; tempo < kTempi; ++tempo)
        tempi[tempo] = hz * std::exp(logTempo(tempo));
    std::vector<View> views = viewsOf(envelope, tempi);
    weigh(views);
    LocalTempo local;
    std::vector<double> standings;
    for (const std::size_t tempo : bestPath(views)) {
        standings.push_back(views[standings.size()].standings[tempo]);
        local.hz.push_back(tempi[tempo]);
    }
    local.standing = medianOf(standings);
    return local;
}

double LocalTempo::at(double seconds) const {
    constexpr double kHopSeconds = kHopFrames / OnsetEnvelopes::kFramesPerSecond;
    constexpr double kMiddle = kWindowFrames / 2 / OnsetEnvelopes::kFramesPerSecond;
    const auto last = static_cast<double>(hz.size() - 1);
    const double place = std::clamp((seconds - kMiddle) / kHopSeconds, 0.0, last);
    const auto before = static_cast<std::size_t>(place);
    if (before + 1 == hz.size()) return hz.back();
    const double share = place - static_cast<double>(before);
    return hz[before] + share * (hz[before + 1] - hz[before]);
}

}  // namespace beatatlas::track::inner
