// SPDX-License-Identifier: MIT
// catalogue_bench FILE [TRACKS]: makes a catalogue of invented tracks (a million) unless the file is
// there, and prints how long each filter takes to list twenty tracks in each order, forward and
// reversed: milliseconds of processor time, the median of several runs.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "SyntheticCatalogue.h"
#include "catalogue/query/TrackQuery.h"

namespace {

using catalogue::Catalogue;
using catalogue::TrackQuery;
using Clock = std::chrono::steady_clock;
using Order = TrackQuery::Order;

constexpr std::int64_t kUsualTracks = 1000000;
constexpr std::int64_t kListed = 20;
constexpr int kRuns = 5;

constexpr std::array kOrders = {std::pair(Order::path, "path"),
                                std::pair(Order::artist, "artist"),
                                std::pair(Order::title, "title"),
                                std::pair(Order::bpm, "bpm"),
                                std::pair(Order::key, "key"),
                                std::pair(Order::length, "length"),
                                std::pair(Order::confidence, "confidence"),
                                std::pair(Order::added, "added")};

struct Case {
    const char* name;
    TrackQuery query;
};

TrackQuery withText(const char* text) {
    TrackQuery query;
    query.text = text;
    return query;
}

TrackQuery withTempo(double lowest, double highest) {
    TrackQuery query;
    query.bpm = {{lowest, highest}};
    return query;
}

TrackQuery mixing(int key, double bpm) {
    TrackQuery query;
    query.keys = catalogue::compatibleKeys(key);
    query.bpm = catalogue::compatibleTempos(bpm, 6.0);
    return query;
}

std::vector<Case> cases() {
    TrackQuery corrected;
    corrected.isCorrected = true;
    TrackQuery gone;
    gone.isGone = true;
    TrackQuery unsure;
    unsure.confidenceBelow = 0.8;
    TrackQuery hardlySure;
    hardlySure.confidenceBelow = 0.31;
    TrackQuery key;
    key.keys = {12};
    TrackQuery all = mixing(12, 128.0);
    all.text = "love";
    TrackQuery twoWords = withText("love");
    twoWords.bpm = {{120.0, 128.0}};
    return {{"none", {}},
            {"text, in every path", withText("music")},
            {"text, in many", withText("love")},
            {"text, in few", withText("mirror signal echo")},
            {"text, in none", withText("zzzz")},
            {"text of one letter", withText("u")},
            {"two letters, in many", withText("lo")},
            {"two letters, in few", withText("ü9")},
            {"two letters, in none", withText("日本")},
            {"bpm 120:128", withTempo(120.0, 128.0)},
            {"bpm 128:128", withTempo(128.0, 128.0)},
            {"bpm 300:400", withTempo(300.0, 400.0)},
            {"key 8A", key},
            {"compatible with 8A", mixing(12, 128.0)},
            {"compatible, and text", all},
            {"bpm and text", twoWords},
            {"low confidence", unsure},
            {"hardly any confidence", hardlySure},
            {"corrected", corrected},
            {"gone", gone}};
}

/** Processor time, which other programs do not disturb; opened anew, as each command does. */
double millisecondsOf(const std::string& path, const TrackQuery& query) {
    const std::clock_t begin = std::clock();
    const Catalogue catalogue(path, Catalogue::Access::read);
    listTracks(catalogue, query, [](const base::ListedTrack&) {});
    return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

double medianOf(const std::string& path, const TrackQuery& query) {
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) times.push_back(millisecondsOf(path, query));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void printTable(const std::string& path) {
    std::printf("%-24s", "ms, the first 20 by");
    for (const auto& [order, name] : kOrders) std::printf("%11s", name);
    std::printf("\n");
    double longest = 0.0;
    for (Case& each : cases()) {
        std::printf("%-24s", each.name);
        for (const auto& [order, name] : kOrders) {
            each.query.order = order;
            each.query.limit = kListed;
            const double forward = medianOf(path, each.query);
            each.query.isReversed = true;
            const double backward = medianOf(path, each.query);
            each.query.isReversed = false;
            longest = std::max({longest, forward, backward});
            std::printf(" %5.1f%5.1f", forward, backward);
        }
        std::printf("\n");
    }
    std::printf("the longest of all: %.1f ms\n", longest);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    try {
        const bool isNew = !std::filesystem::exists(argv[1]);
        if (isNew) {
            Catalogue catalogue(argv[1], Catalogue::Access::create);
            const auto begin = Clock::now();
            const std::int64_t tracks = argc > 2 ? std::atoll(argv[2]) : kUsualTracks;
            bench::fillCatalogue(catalogue, tracks);
            std::printf("made %lld tracks in %.0f s\n", static_cast<long long>(tracks),
                        std::chrono::duration<double>(Clock::now() - begin).count());
        }
        printTable(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "catalogue_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
