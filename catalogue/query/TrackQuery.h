// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/ListedTrack.h"
#include "catalogue/Catalogue.h"

namespace catalogue {

/** What is less certain is worth a look: of such answers one in five is wrong. */
inline constexpr double kSureConfidence = 0.8;

/** What most players can change a tempo by. */
inline constexpr double kUsualPercent = 6.0;

/** The tempi that tracks can be asked for by. */
inline constexpr double kLowestBpm = 1.0;
inline constexpr double kHighestBpm = 10000.0;

/** From lowest to highest, both included. */
struct BpmRange {
    double lowest = 0.0;
    double highest = 0.0;
};

/** What tracks are asked for; every condition that is given must hold. */
struct TrackQuery {
    /** Somewhere in path, artist or title, without regard to capitals and accents. */
    std::string text;
    /** Any of them; none: any tempo. */
    std::vector<BpmRange> bpm;
    /** Any of them, 0 to 23; none: any key, or no key. */
    std::vector<int> keys;
    /** Only tracks whose tempo or key is less certain than this, 0 to 1. */
    std::optional<double> confidenceBelow;
    bool isCorrected = false;
    /** Tracks that are no longer where they were, instead of those that are. */
    bool isGone = false;
    /** But not this one. */
    std::optional<std::int64_t> except;

    /** What is missing comes first. */
    enum class Order { path, artist, title, bpm, key, length, confidence, added };
    Order order = Order::path;
    bool isReversed = false;
    std::optional<std::int64_t> limit;
};

/** By the names that people give them. */
std::map<std::string, TrackQuery::Order> orders();

/** Hands over the tracks one by one, in order; takes the same memory for any number of them. Never
 *  looks at every track where an index knows better.
 *  @throws CatalogueError, and what show throws */
void listTracks(const Catalogue& catalogue, const TrackQuery& query,
                const std::function<void(const base::ListedTrack&)>& show);

/** The numbers of the same tracks, in the same order: what a list that is shown a page at a time
 *  keeps of it. @throws CatalogueError */
std::vector<std::int64_t> listIds(const Catalogue& catalogue, const TrackQuery& query);

/** Hands over the tracks of these numbers in their order, leaving out those that the catalogue does
 *  not have. @throws CatalogueError, and what show throws */
void listChosen(const Catalogue& catalogue, const std::vector<std::int64_t>& ids,
                const std::function<void(const base::ListedTrack&)>& show);

/** Like listTracks() for files of music that could not be analysed, in the order of their paths. */
void listFailures(const Catalogue& catalogue, bool isReversed, std::optional<std::int64_t> limit,
                  const std::function<void(const base::ListedFailure&)>& show);

/** Narrows a query to what mixes with a key, a tempo or both; the conditions that it has keep
 *  holding, also where nothing meets all of them.
 *  @param percent  of compatibleTempos() */
void narrowToCompatible(TrackQuery& query, std::optional<int> key, std::optional<double> bpm,
                        double percent);

/** The keys that mix with a key: itself, a fifth up, a fifth down, and its relative. */
std::vector<int> compatibleKeys(int key);

/** The tempos that mix with a tempo: within so many percent of it, its half and its double. */
std::vector<BpmRange> compatibleTempos(double bpm, double percent);

}  // namespace catalogue
