// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas::track::inner {

/** A sequence of beats in time. A position on it is counted in beats from the first one and may be
 *  fractional. */
class BeatLine {
public:
    /** @param seconds  ascending, at least two */
    explicit BeatLine(std::vector<double> seconds) : seconds_(std::move(seconds)) {}

    const std::vector<double>& seconds() const { return seconds_; }
    std::size_t size() const { return seconds_.size(); }

    /** The time of a position, in seconds; extrapolated linearly beyond both ends. */
    double timeAt(double place) const;

    /** The position of a time; beyond the ends, the position of the end. */
    double placeOf(double time) const;

private:
    std::vector<double> seconds_;
};

}  // namespace beatatlas::track::inner
