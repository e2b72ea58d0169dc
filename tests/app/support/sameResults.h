// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "beatatlas/track.hpp"

namespace test {

/** A file analysed the plain way: decoded as a whole, counted, handed over as two arrays. */
class PlainAnalysis {
public:
    explicit PlainAnalysis(const std::string& path);
    const beatatlas::track::TrackResult& result() const { return result_; }

private:
    beatatlas::track::TrackResult result_;
};

/** Fails the test where a bit of one differs from the other. */
void expectSameResults(const beatatlas::track::TrackResult& found,
                       const beatatlas::track::TrackResult& expected);

}  // namespace test
