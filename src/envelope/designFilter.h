// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace beatatlas {

/** A new filter of one of the envelope kinds, with empty state.
 *
 *  @param freq  corner frequency in Hz
 *  @param rate  rate in Hz of the signal to be filtered */
template <class Filter>
std::unique_ptr<Filter> designFilter(double freq, double rate) {
    auto filter = std::make_unique<Filter>();
    filter->create(freq, rate);
    return filter;
}

/** Runs one value through a filter, as a block of its own. */
template <class Filter>
double filterValue(Filter& filter, double in) {
    double out = 0.0;
    filter.operate(&in, &out, 1);
    return out;
}

}  // namespace beatatlas
