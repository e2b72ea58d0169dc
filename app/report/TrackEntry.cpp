// SPDX-License-Identifier: MIT
#include "report/TrackEntry.h"

#include <nlohmann/json.hpp>

#include "report/textSummary.h"
#include "report/trackJson.h"

namespace app {

std::string TrackEntry::text() const {
    return textSummary(report_);
}

nlohmann::ordered_json TrackEntry::json() const {
    return trackJson(report_, withWaves_);
}

}  // namespace app
