// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace output {

/** What was found in one track, in both forms of a report. */
class ReportEntry {
public:
    virtual ~ReportEntry() = default;

    /** A few lines for a person. Ends with a line feed. */
    virtual std::string text() const = 0;

    /** One entry of the JSON document. */
    virtual nlohmann::ordered_json json() const = 0;
};

}  // namespace output
