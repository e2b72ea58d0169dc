// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "cli/AnalysisArguments.h"
#include "cli/EffortArguments.h"
#include "cli/TracksCommand.h"
#include "media/tags/TagRewrite.h"
#include "media/tags/planTags.h"
#include "output/KeyName.h"
#include "output/TagReport.h"

namespace app {

/** `beatatlas tag FILE...`: tempo and key into the tags of tracks. Without --write it only shows
 *  what it would do. */
class TagCommand : public TracksCommand {
public:
    std::string name() const override { return "tag"; }
    std::string description() const override {
        return "Write tempo and key into the tags of tracks";
    }

private:
    void declareOwn(CLI::App& arguments, CLI::Option* json) override;
    void settleOwn() override;
    std::string documentFormat() const override { return "beatatlas.tags"; }
    std::unique_ptr<output::ReportEntry> examine(const std::string& path) override;

    output::TagReport tagTrack(const std::string& path, ProgressLine& progress);
    media::TagWish wishFrom(const beatatlas::track::TrackResult& analysis) const;
    void write(output::TagReport& report);

    AnalysisArguments analysis_;
    EffortArguments effort_;
    output::KeyNotation notation_ = output::KeyNotation::standard;
    media::TagRewrite::Options rewrite_;
    bool writes_ = false;
    bool isDryRun_ = false;
    bool overwrites_ = false;
};

}  // namespace app
