// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/Analysed.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Scan.h"

namespace test {

/** A sound of its own for each number. */
catalogue::AudioHash soundOf(int number);

/** The options of an automatic analysis with everything. */
beatatlas::track::Options everything();

/** Eight seconds at 120 BPM in A minor, judged by the automatic tempo. */
beatatlas::track::TrackResult exampleResult();

/** A track of that path with that result.
 *  @param sound  of soundOf() */
catalogue::Analysed analysedTrack(const std::string& path, int sound,
                                  const catalogue::FileState& state = {1000, 5});

/** Puts tracks into the catalogue as a scan does. */
void store(catalogue::Catalogue& catalogue, const std::vector<catalogue::Analysed>& tracks);

/** What a query of one value gives, as text; "" for NULL. */
std::string valueOf(const catalogue::Catalogue& catalogue, const std::string& query);

}  // namespace test
