// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/StoredTracksCommand.h"
#include "output/KeyName.h"
#include "output/ReportWriter.h"

namespace app {

/** `beatatlas show FILE…`: what a catalogue knows of these tracks. */
class ShowCommand : public StoredTracksCommand {
public:
    std::string name() const override { return "show"; }
    std::string description() const override { return "Print what a catalogue knows of tracks"; }

private:
    void declareOwn(CLI::App& arguments) override;
    catalogue::Catalogue::Access access() const override {
        return catalogue::Catalogue::Access::readBriefly;
    }
    void begin(ResultStream& results) override;
    void handle(const catalogue::Catalogue& catalogue, const std::string& file,
                ResultStream& results) override;
    void addFailure(const std::string& file, const std::string& reason) override {
        writer_->addFailure(file, reason);
    }
    void end() override { writer_->end(); }

    bool asJson_ = false;
    bool withWaves_ = false;
    std::optional<output::KeyNotation> keyNotation_;
    std::unique_ptr<output::ReportWriter> writer_;
};

}  // namespace app
