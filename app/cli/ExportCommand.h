// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/AnalysisArguments.h"
#include "cli/Command.h"
#include "cli/EffortArguments.h"
#include "cli/ExportPlaces.h"
#include "cli/ExportedTrack.h"
#include "cli/OriginArguments.h"
#include "cli/StoredExport.h"
#include "cli/TrackArguments.h"
#include "output/KeyName.h"
#include "output/formats/ExportFormat.h"

namespace CLI {
class Option;
}

namespace app {

/** `beatatlas export FILE... --to FORMAT -o OUT`: what is found in tracks, for other programs; with
 *  --catalogue what was found in tracks of a catalogue. A track that fails keeps none of the others
 *  from being exported. */
class ExportCommand : public Command {
public:
    ExportCommand();

    std::string name() const override { return "export"; }
    std::string description() const override {
        return "Write tempo, beats, keys and waveforms of tracks for other programs";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    void declareFormat(CLI::App& arguments);
    void settle();
    void settleFormat();
    void settlePeaks();
    void settleFiles();
    void settleStored();
    bool handOver(const TrackReceiver& receiver);
    bool analyseEach(const TrackReceiver& receiver);
    void present(ExportedTrack& track) const;
    bool exportTogether(ResultStream& results);
    bool addAll(const output::DocumentSink& write);
    bool exportEach(ResultStream& results);
    std::string writeOne(const ExportedTrack& exported, std::size_t number,
                         ResultStream& results) const;
    media::FileAnalysis::Options reading(const std::string& path) const;
    ExportedTrack examine(const std::string& path, ProgressLine& progress) const;
    bool isOfPeaks() const;

    std::vector<const CLI::Option*> analysisOptions_;
    const CLI::Option* wavesOption_ = nullptr;
    const CLI::Option* framesOption_ = nullptr;
    const CLI::Option* bitsOption_ = nullptr;
    std::string formatName_;
    const output::ExportFormat* format_ = nullptr;
    output::ExportOptions options_;
    int framesPerPixel_;
    ExportPlaces places_;
    OriginArguments origin_;
    AnalysisArguments analysis_;
    EffortArguments effort_;
    TrackArguments tracks_;
    StoredExport stored_;
    bool isStored_ = false;
    std::optional<output::KeyNotation> keyNotation_;
    std::vector<std::string> paths_;
};

}  // namespace app
