// SPDX-License-Identifier: MIT
#include "output/TrackEntry.h"

#include <nlohmann/json.hpp>

#include "output/textSummary.h"
#include "output/trackJson.h"

namespace output {

std::string TrackEntry::text() const {
    return textSummary(report_);
}

nlohmann::ordered_json TrackEntry::json() const {
    return trackJson(report_, withWaves_);
}

}  // namespace output
