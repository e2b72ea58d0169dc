// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace beatatlas::bench {

/** Processor time of the calling thread so far, in seconds. */
double threadSeconds();

/** The distribution of repeated measurements. */
struct Spread {
    double median = 0.0;
    double least = 0.0;
    double most = 0.0;
};

/** @param values at least one */
Spread spreadOf(std::vector<double> values);

/** "1.23 (1.20 … 1.31)" */
std::string textOf(const Spread& spread, int decimals);

}  // namespace beatatlas::bench
