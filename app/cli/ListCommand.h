// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "catalogue/query/TrackQuery.h"
#include "cli/CatalogueArgument.h"
#include "cli/Command.h"
#include "output/KeyName.h"
#include "output/list/ListWriter.h"

namespace app {

/** `beatatlas list`: which tracks of a catalogue meet all of these conditions. */
class ListCommand : public Command {
public:
    std::string name() const override { return "list"; }
    std::string description() const override { return "List tracks of a catalogue"; }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    void declareFilters(CLI::App& arguments);
    void declareForm(CLI::App& arguments);
    void settle();
    bool hasFilter() const;
    void settleCompanion(const catalogue::Catalogue& catalogue);
    void listAll(const catalogue::Catalogue& catalogue, output::ListWriter& writer) const;

    CatalogueArgument catalogue_;
    catalogue::TrackQuery query_;
    std::optional<std::string> bpm_;
    std::optional<std::string> key_;
    std::optional<std::string> companion_;
    std::optional<double> withinPercent_;
    bool isUnsure_ = false;
    bool isFailed_ = false;
    output::ListFormat format_ = output::ListFormat::table;
    std::optional<output::KeyNotation> keyNotation_;
};

}  // namespace app
