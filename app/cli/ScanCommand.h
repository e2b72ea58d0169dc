// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Scan.h"
#include "cli/AnalysisArguments.h"
#include "cli/CatalogueArgument.h"
#include "cli/Command.h"
#include "cli/TrackArguments.h"
#include "scan/FileGathering.h"
#include "scan/ScanProgress.h"
#include "scan/ScanRun.h"

namespace app {

/** `beatatlas scan PATH…`: everything in these folders and lists, into a catalogue. */
class ScanCommand : public Command {
public:
    ScanCommand();

    std::string name() const override { return "scan"; }
    std::string description() const override {
        return "Analyse all tracks in folders, and keep what is found in a catalogue";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    void declareFiles(CLI::App& arguments);
    void declareWork(CLI::App& arguments);
    void declareOutcome(CLI::App& arguments);
    void requireFileLimit() const;
    bool mayFindAnything() const;
    catalogue::Scan::Plan plan() const;
    std::unique_ptr<catalogue::Scan> openScan(catalogue::Catalogue& catalogue) const;
    ScanRun::Options work() const;
    FileGathering gathering(catalogue::Scan& scan, const std::string& catalogue,
                            ScanProgress& progress);
    void scan(catalogue::Scan& scan, const std::string& catalogue, ScanProgress& progress);
    void finish(catalogue::Scan& scan, const FileGathering& files, ScanProgress& progress) const;

    std::vector<std::string> paths_;
    CatalogueArgument catalogue_;
    AnalysisArguments analysis_;
    TrackArguments tracks_;
    FolderWalk::Options walk_;
    std::string shard_;
    bool readsNulNames_ = false;
    int jobs_;
    std::optional<double> timeLimit_;
    std::int64_t memoryLimit_ = std::int64_t{2} << 30;
    bool retriesFailures_ = false;
    bool rescansAll_ = false;
    bool prunes_ = false;
    bool prunesCorrected_ = false;
    bool waits_ = false;
    ScanProgress::Manner progress_ = ScanProgress::Manner::watched;
    std::int64_t found_ = 0;
    bool hasTrouble_ = false;
};

}  // namespace app
