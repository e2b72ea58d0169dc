// SPDX-License-Identifier: MIT
#include "output/picture/barLines.h"

namespace output {

std::vector<BarLine> barLines(const std::vector<beatatlas::track::Beat>& beats, int rate,
                              const TimeAxis& axis, double leastDistance) {
    std::vector<BarLine> lines;
    int number = 0;
    for (const beatatlas::track::Beat& beat : beats) {
        if (!beat.isDownbeat()) continue;
        ++number;
        const double seconds = static_cast<double>(beat.frame) / rate;
        if (axis.covers(seconds)) lines.push_back({axis.xOf(seconds), number});
    }
    if (lines.size() < 2) return lines;
    const double distance =
        (lines.back().x - lines.front().x) / static_cast<double>(lines.size() - 1);
    int stride = 1;
    while (distance * stride < leastDistance && stride < number) stride *= 2;
    std::erase_if(lines, [&](const BarLine& line) { return (line.number - 1) % stride != 0; });
    return lines;
}

}  // namespace output
