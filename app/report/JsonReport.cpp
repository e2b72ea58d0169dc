// SPDX-License-Identifier: MIT
#include "report/JsonReport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "report/jsonParts.h"
#include "report/toolVersion.h"

namespace app {

namespace {

// Raised when a member changes its meaning or goes; members may be added without.
constexpr int kFormatVersion = 1;

}  // namespace

void JsonReport::begin() {
    results_.write(fmt::format(R"({{"format":"{}","version":{},"tool":"{}","tracks":[)", format_,
                               kFormatVersion, toolVersion()));
}

void JsonReport::add(const ReportEntry& entry) {
    write(entry.json());
}

void JsonReport::addFailure(const std::string& path, const std::string& reason) {
    write(failureJson(path, reason));
}

void JsonReport::write(const nlohmann::ordered_json& entry) {
    results_.write(isFirst_ ? "\n" : ",\n");
    results_.write(entry.dump());
    isFirst_ = false;
}

void JsonReport::end() {
    results_.write("\n]}\n");
}

}  // namespace app
