// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "analysis/KeyAnalyzer.h"
#include "cli/EffortArguments.h"
#include "cli/TracksCommand.h"
#include "output/KeyName.h"

namespace app {

/** `beatatlas key FILE…`: the key of these tracks by all of the library's finders. */
class KeyCommand : public TracksCommand {
public:
    std::string name() const override { return "key"; }
    std::string description() const override {
        return "Print the key of tracks at their own concert pitch, by all key finders";
    }

private:
    void declareOwn(CLI::App& arguments, CLI::Option* json) override;
    std::string documentFormat() const override { return "beatatlas.key"; }
    std::unique_ptr<output::ReportEntry> examine(const std::string& path) override;

    output::KeyOptions options_;
    std::optional<output::KeyNotation> keyNotation_;
    EffortArguments effort_;
};

}  // namespace app
