// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "catalogue/query/TrackQuery.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments by which commands choose tracks of a catalogue, and their order. */
class ListFilters {
public:
    /** @param textName  of the text to be found: "TEXT", or an option such as "--text" */
    void declare(CLI::App& arguments, const std::string& textName);

    /** Before the catalogue is opened. @throws UsageError when arguments do not go together */
    void settle();

    /** Whether tracks are left out, or sorted otherwise than by path. */
    bool isNarrowing() const;

    /** @throws UsageError when the catalogue does not know what is to be mixed with,
     *          CatalogueError */
    catalogue::TrackQuery queryIn(const catalogue::Catalogue& catalogue) const;

private:
    void declareConditions(CLI::App& arguments, const std::string& textName);
    void declareCompany(CLI::App& arguments);
    void declareOrder(CLI::App& arguments);
    void addCompany(catalogue::TrackQuery& query, const catalogue::Catalogue& catalogue) const;

    catalogue::TrackQuery query_;
    std::optional<std::string> bpm_;
    std::optional<std::string> key_;
    std::optional<std::string> companion_;
    std::optional<double> withinPercent_;
    bool isUnsure_ = false;
};

}  // namespace app
