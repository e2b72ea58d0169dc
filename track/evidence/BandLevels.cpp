// SPDX-License-Identifier: MIT
#include "track/evidence/BandLevels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace beatatlas::track::inner {

namespace {

constexpr double kHighestHz = 15500.0;
constexpr double kBandsPerOctave = 5.0;
// Below this bin every band is one bin wide, about 43 Hz.
constexpr int kNarrowBins = 8;
// About 43, 170, 520, 2000 and 5000 Hz.
constexpr std::array<int, kGroups> kGroupBins = {1, 4, 12, 46, 116};
// The number of bands, rounded up to whole vectors.
constexpr std::size_t kMostBands = 3 * kCodedTogether;

std::vector<int> bandEdges(int rate) {
    const double hzPerBin = static_cast<double>(rate) / SpectrumStream::kLength;
    std::vector<int> edges;
    for (int bin = 1; bin <= kNarrowBins; ++bin) edges.push_back(bin);
    double edge = kNarrowBins;
    while (edges.back() * hzPerBin < kHighestHz) {
        edge *= std::exp2(1.0 / kBandsPerOctave);
        const int bin = static_cast<int>(std::nearbyint(edge));
        if (bin > edges.back()) edges.push_back(bin);
    }
    return edges;
}

std::array<std::size_t, kGroups + 1> groupStartsOf(const std::vector<int>& edges) {
    std::array<std::size_t, kGroups + 1> starts{};
    for (std::size_t g = 0; g < kGroups; ++g)
        starts[g] = static_cast<std::size_t>(
            std::lower_bound(edges.begin(), edges.end(), kGroupBins[g]) - edges.begin());
    starts[kGroups] = edges.size() - 1;
    return starts;
}

int wholeVectors(int bins) {
    constexpr int kVector = 16;
    return (bins + kVector - 1) / kVector * kVector;
}

template <std::size_t kWidth>
struct CodeLanes {
    BEATATLAS_LANES static void run(const float* energies, LevelCode* codes) {
        for (std::size_t i = 0; i < kMostBands; i += kCodedTogether) {
            Lanes<float, kCodedTogether> energy;
            loadLanes(energy, energies + i);
            Lanes<std::int32_t, kCodedTogether> code;
            codeLevels(energy, code);
            using Codes = Lanes<LevelCode, kCodedTogether>;
            storeLanes(Codes(__builtin_convertvector(code, Codes)), codes + i);
        }
    }
};

}  // namespace

BandLevels::BandLevels(int rate)
    : hop_(rate / kFramesPerSecond), edges_(bandEdges(rate)), groupStarts_(groupStartsOf(edges_)),
      bins_(wholeVectors(edges_.back())), evenSums_(edges_), oddSums_(edges_), stream_(hop_) {}

void BandLevels::put(const float* mono, std::int64_t samples) {
    samples_ += samples;
    stream_.put(mono, samples,
                [this](const FrameSpectra& spectra, int frames) { codeBatch(spectra, frames); });
}

void BandLevels::finish() {
    stream_.finish(samples_ / hop_ + 1,
                   [this](const FrameSpectra& spectra, int frames) { codeBatch(spectra, frames); });
}

void BandLevels::codeBatch(const FrameSpectra& spectra, int frames) {
    for (int frame = 0; frame < frames; frame += 2) {
        spectra.powers(frame / 2, bins_, evenSums_.powers(), oddSums_.powers());
        codeFrame(evenSums_);
        if (frame + 1 < frames) codeFrame(oddSums_);
    }
}

void BandLevels::codeFrame(BandSums& sums) {
    std::array<float, kMostBands> energies{};
    sums.sum(bins_, energies.data());
    std::array<LevelCode, kMostBands> codes;
    runInLanes<CodeLanes>(static_cast<const float*>(energies.data()), codes.data());
    std::copy_n(codes.data(), bands(), nextFrame());
}

LevelCode* BandLevels::codesOf(std::int64_t frame) const {
    const auto index = static_cast<std::size_t>(frame);
    return chunks_[index / kChunkFrames].get() + index % kChunkFrames * bands();
}

LevelCode* BandLevels::nextFrame() {
    const std::int64_t frame = frames_++;
    if (static_cast<std::size_t>(frame) % kChunkFrames == 0)
        chunks_.push_back(std::make_unique_for_overwrite<LevelCode[]>(kChunkFrames * bands()));
    return codesOf(frame);
}

// Counts in a histogram, since a list of the means would be too long to sort.
double BandLevels::loudLevel(const std::vector<float>& levelOfCode) const {
    std::vector<std::int64_t> framesOfMean(kLevelCodes);
    for (std::int64_t frame = 0; frame < frames_; ++frame) {
        const LevelCode* codes = codesOf(frame);
        float sum = 0.0F;
        for (std::size_t band = 0; band < bands(); ++band) sum += levelOfCode[codes[band]];
        const float mean = sum / static_cast<float>(bands());
        ++framesOfMean[codeOfEnergy(mean * mean)];
    }
    const std::int64_t below = (frames_ - 1) * 9 / 10;
    std::int64_t frames = 0;
    std::size_t code = 0;
    while (frames <= below) frames += framesOfMean[code++];
    return static_cast<double>(levelOfCode[code - 1]);
}

std::unique_ptr<LevelCode[]> BandLevels::takeChunk() {
    if (chunksTaken_ == chunks_.size()) return nullptr;
    return std::move(chunks_[chunksTaken_++]);
}

}  // namespace beatatlas::track::inner
