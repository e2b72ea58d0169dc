// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/KeyReport.h"
#include "output/ReportEntry.h"

namespace output {

/** What `key` reports of a track. */
class KeyEntry : public ReportEntry {
public:
    explicit KeyEntry(KeyReport report) : report_(std::move(report)) {}

    std::string text() const override;
    nlohmann::ordered_json json() const override;

private:
    KeyReport report_;
};

}  // namespace output
