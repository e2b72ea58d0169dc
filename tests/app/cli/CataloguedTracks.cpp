// SPDX-License-Identifier: MIT
#include "cli/CataloguedTracks.h"

#include <SQLiteCpp/Database.h>
#include <nlohmann/json.hpp>

#include "catalogue/Scan.h"
#include "support/Reports.h"

namespace test {

namespace {

catalogue::Analysed trackOf(const std::string& path, int number, double bpm, int key) {
    base::TrackSource source = exampleReport();
    source.path = path;
    source.format.tags = {"The Example", "Track " + std::to_string(number)};
    beatatlas::track::TrackResult result = emptyReport().analysis;
    if (bpm > 0.0) {
        result = exampleReport().analysis;
        result.bpm = bpm;
        for (auto& beat : result.beats) beat.bpm = bpm;
        result.judgement.emplace();
        result.judgement->rawBpm = bpm;
        result.judgement->confidence = {1.0, 0.5, 1.0, 0.25};
        for (int i = 0; i < 24; ++i)
            result.key->ranking.at(static_cast<std::size_t>(i)).key = (key + i) % 24;
    }
    beatatlas::track::Options options;
    options.wantsSessionKey = true;
    catalogue::AudioHash hash{};
    hash[0] = static_cast<std::uint8_t>(number);
    return catalogue::makeAnalysed(source, {1, 1}, hash, options, result, 0.5, {}, "1.2.3");
}

}  // namespace

CataloguedTracks::CataloguedTracks() {
    catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::create);
    {
        catalogue::Scan scan(catalogue, {"{}", false, false});
        scan.settle();
        scan.put(trackOf("/music/a.mp3", 1, 120.0, 12));
        scan.put(trackOf("/music/b, \"c\".mp3", 2, 96.0, 19));
        scan.put(trackOf("/music/z\xFF\n.mp3", 3, 120.0, 3));
        scan.put(trackOf("/music/silence.wav", 4, 0.0, -1));
        scan.put(trackOf("/music/gone.mp3", 5, 120.0, 12));
        scan.putFailure("/music/bad.mp3", {}, {catalogue::FailureKind::damaged, "is cut off"});
        scan.putFailure("/music/cover.png", {}, {catalogue::FailureKind::notAudio, "is none"});
    }
    catalogue.database().exec("UPDATE tracks SET gone_at = 1 WHERE title = 'Track 5'");
    EXPECT_EQ(catalogued("correct", {"--double", "--", "/music/z\xFF\n.mp3"}).exitStatus, 0);
}

ToolRun CataloguedTracks::catalogued(const std::string& command,
                                     std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {command, "--catalogue", path_});
    return runTool(arguments);
}

std::vector<std::string> CataloguedTracks::namesIn(const std::string& command,
                                                   const std::vector<std::string>& arguments) {
    const ToolRun run = catalogued(command, arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    std::vector<std::string> found;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        const auto path = nlohmann::json::parse(line)["file"].get<std::string>();
        found.push_back(path.substr(path.rfind('/') + 1));
    }
    return found;
}

}  // namespace test
