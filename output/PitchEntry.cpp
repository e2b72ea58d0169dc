// SPDX-License-Identifier: MIT
#include "output/PitchEntry.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "output/jsonParts.h"
#include "output/textParts.h"

namespace output {

std::string PitchEntry::text() const {
    const auto& pitch = report_.pitchHz;
    return trackFileText(report_, report_.frames) +
           textLine("pitch", pitch ? fmt::format("A4 = {} Hz", *pitch) : "no pitch found");
}

nlohmann::ordered_json PitchEntry::json() const {
    nlohmann::ordered_json track = trackFileJson(report_, report_.frames, {});
    const auto& pitch = report_.pitchHz;
    track["pitch"] = pitch ? nlohmann::ordered_json(*pitch) : nullptr;
    track["mode"] = report_.options.mode;
    track["fullRate"] = report_.options.isFullRate;
    return track;
}

}  // namespace output
