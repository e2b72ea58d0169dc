// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas::track::inner {

/** A line of beats in time. A place on it is counted in beats from the first one, with fractions
 *  between. */
class BeatLine {
public:
    /** @param seconds  ascending, at least two */
    explicit BeatLine(std::vector<double> seconds) : seconds_(std::move(seconds)) {}

    const std::vector<double>& seconds() const { return seconds_; }
    std::size_t size() const { return seconds_.size(); }

    /** The time of a place; straight on beyond both ends. */
    double timeAt(double place) const;

    /** The place of a time; beyond the ends theirs. */
    double placeOf(double time) const;

private:
    std::vector<double> seconds_;
};

}  // namespace beatatlas::track::inner
