// SPDX-License-Identifier: MIT
#include "output/fileWarnings.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "output/textFormat.h"

namespace output {

namespace {

constexpr std::size_t kNamedGaps = 4;

std::string gapsWarning(const std::vector<base::Gap>& gaps) {
    double seconds = 0.0;
    for (const base::Gap& gap : gaps) seconds += gap.length;
    std::string places;
    const std::size_t named = std::min(gaps.size(), kNamedGaps);
    for (std::size_t i = 0; i < named; ++i)
        places += fmt::format("{}{} ({:.2f} s)", i == 0 ? "" : ", ", clockTime(gaps[i].start),
                              gaps[i].length);
    if (gaps.size() > named) places += fmt::format(" and {} more", gaps.size() - named);
    return fmt::format("is damaged: {}, {:.2f} s in all, at {}; silence was put there",
                       counted(static_cast<std::int64_t>(gaps.size()), "gap"), seconds, places);
}

std::string overloadWarning(const base::Overload& overload) {
    const std::string samples = "is too loud: clipped " + counted(overload.clipped, "sample");
    if (std::isinf(overload.peak)) return samples + ", up to infinity";
    return samples +
           fmt::format(", up to {:.1f} dB over full scale", 20.0 * std::log10(overload.peak));
}

}  // namespace

std::vector<std::string> fileWarnings(const base::TrackSource& file) {
    std::vector<std::string> warnings;
    if (file.isCutOff) warnings.emplace_back("is cut off; only its beginning was taken");
    if (!file.gaps.empty()) warnings.push_back(gapsWarning(file.gaps));
    if (file.gaps.empty() && file.damagedPackets > 0)
        warnings.push_back("is damaged in " + counted(file.damagedPackets, "place") +
                           "; what can be decoded there was taken");
    if (file.repeatedPackets > 0)
        warnings.push_back("has " + counted(file.repeatedPackets, "packet") +
                           " twice; they were taken once");
    if (file.lacksEnd) warnings.emplace_back("has no mark of its end: it may have been cut off");
    if (file.format.changes)
        warnings.emplace_back("changes its sample rate or its channels on the way");
    if (file.overload.isTooLoud()) warnings.push_back(overloadWarning(file.overload));
    if (file.overload.notNumbers > 0)
        warnings.push_back("holds no number in " + counted(file.overload.notNumbers, "sample") +
                           "; silence was put there");
    return warnings;
}

}  // namespace output
