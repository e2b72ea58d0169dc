// SPDX-License-Identifier: MIT
#include "catalogue/StoredTracks.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>

#include "output/fileWarnings.h"
#include "support/Reports.h"

namespace test {

catalogue::AudioHash soundOf(int number) {
    catalogue::AudioHash hash{};
    hash[0] = static_cast<std::uint8_t>(number);
    hash[15] = 0xFF;
    return hash;
}

beatatlas::track::Options everything() {
    beatatlas::track::Options options;
    options.wantsSessionKey = true;
    return options;
}

beatatlas::track::TrackResult exampleResult() {
    beatatlas::track::TrackResult result = exampleReport().analysis;
    result.judgement.emplace();
    result.judgement->rawBpm = 120.0;
    result.judgement->confidence = {1.0, 0.5, 1.0, 0.25};
    result.judgement->stretches = {{0.1, 7.1, 120.0}};
    result.judgement->readings = {{beatatlas::track::ReadingKind::half, 60.0, 0.25, 0.5}};
    // A ranking names every key once.
    for (int i = 0; i < beatatlas::track::kKeyCount; ++i)
        result.key->ranking[static_cast<std::size_t>(i)].key = (12 + 5 * i) % 24;
    return result;
}

catalogue::Analysed analysedTrack(const std::string& path, int sound,
                                  const catalogue::FileState& state) {
    base::TrackSource source = exampleReport();
    source.path = path;
    source.format.tags = {"The Example", "Track " + std::to_string(sound)};
    return catalogue::makeAnalysed(source, state, soundOf(sound), everything(), exampleResult(),
                                   0.5, output::fileWarnings(source), "1.2.3");
}

void store(catalogue::Catalogue& catalogue, const std::vector<catalogue::Analysed>& tracks) {
    catalogue::Scan scan(catalogue, {catalogue::parametersText(everything()), false, false});
    for (const auto& each : tracks) scan.found(each.track.path, each.track.state, 1.0);
    scan.settle();
    for (const auto& each : tracks) scan.put(each);
}

std::string valueOf(const catalogue::Catalogue& catalogue, const std::string& query) {
    return catalogue.database().execAndGet(query).getString();
}

}  // namespace test
