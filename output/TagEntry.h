// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/ReportEntry.h"
#include "output/TagReport.h"

namespace output {

/** What `tag` tells of a track: tempo, key, and each field as it was and is. */
class TagEntry : public ReportEntry {
public:
    explicit TagEntry(TagReport report) : report_(std::move(report)) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    std::string outcome() const;

    TagReport report_;
};

}  // namespace output
