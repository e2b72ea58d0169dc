// SPDX-License-Identifier: MIT
#include "output/JsonReport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "output/jsonParts.h"

namespace output {

namespace {

// Incremented when a member changes its meaning or is removed; adding members does not change it.
constexpr int kFormatVersion = 2;

}  // namespace

void JsonReport::begin() {
    write_(fmt::format(R"({{"format":"{}","version":{},"tool":"{}","tracks":[)", format_,
                       kFormatVersion, toolVersion_));
}

void JsonReport::add(const ReportEntry& entry) {
    put(entry.json());
}

void JsonReport::addFailure(const std::string& path, const std::string& reason) {
    put(failureJson(path, reason));
}

void JsonReport::put(const nlohmann::ordered_json& entry) {
    write_(isFirst_ ? "\n" : ",\n");
    write_(entry.dump());
    isFirst_ = false;
}

void JsonReport::end() {
    write_("\n]}\n");
}

}  // namespace output
