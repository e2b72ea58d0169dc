// SPDX-License-Identifier: MIT
#include "track/key/PeakStore.h"

#include <algorithm>

#include "track/key/frameChroma.h"

namespace beatatlas::track::inner {

void PeakStore::add(float top, const std::vector<SpectralPeak>& peaks) {
    frames_.push_back({top, peaks_.size()});
    loudest_ = std::max(loudest_, top);
    const auto heard = [](const SpectralPeak& peak) {
        return peak.strength * octaveWeight(peak.pitch);
    };
    float most = 0.0F;
    for (const SpectralPeak& peak : peaks) most = std::max(most, heard(peak));
    for (const SpectralPeak& peak : peaks)
        if (heard(peak) > kLeastHeard * most) peaks_.push_back(peak);
}

std::span<const SpectralPeak> PeakStore::peaks(std::size_t frame) const {
    const std::size_t first = frames_[frame].firstPeak;
    const std::size_t end =
        frame + 1 < frames_.size() ? frames_[frame + 1].firstPeak : peaks_.size();
    return {peaks_.data() + first, end - first};
}

}  // namespace beatatlas::track::inner
