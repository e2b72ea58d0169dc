// SPDX-License-Identifier: MIT
#include "bench/measure.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace beatatlas::bench {

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + (static_cast<double>(now.tv_nsec) * 1e-9);
}

Spread spreadOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    const double median =
        values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
    return {median, values.front(), values.back()};
}

std::string textOf(const Spread& spread, int decimals) {
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%.*f (%.*f … %.*f)", decimals, spread.median, decimals,
                  spread.least, decimals, spread.most);
    return text.data();
}

}  // namespace beatatlas::bench
