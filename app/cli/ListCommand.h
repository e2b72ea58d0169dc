// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "cli/CatalogueArgument.h"
#include "cli/Command.h"
#include "cli/ListFilters.h"
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
    void declareForm(CLI::App& arguments);
    void settle();
    void listAll(const catalogue::Catalogue& catalogue, const catalogue::TrackQuery& query,
                 output::ListWriter& writer) const;

    CatalogueArgument catalogue_;
    ListFilters filters_;
    bool isFailed_ = false;
    output::ListFormat format_ = output::ListFormat::table;
    std::optional<output::KeyNotation> keyNotation_;
};

}  // namespace app
