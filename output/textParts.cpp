// SPDX-License-Identifier: MIT
#include "output/textParts.h"

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/KeyName.h"
#include "output/textFormat.h"

namespace output {

namespace {

// Keys of a confidence below this, which are wrong on more than one track in five, are shown with
// the second candidate.
constexpr double kSureKey = 0.8;
// The value for noise and for drums alone.
constexpr double kHardlyAKey = 0.3;

std::string channelsText(int channels) {
    if (channels == 1) return "mono";
    if (channels == 2) return "stereo";
    return fmt::format("{} channels", channels);
}

std::string formatText(const base::TrackSource& file) {
    const base::TrackFormat& format = file.format;
    std::string text = fmt::format("{}, {} Hz, {}", format.codec, grouped(format.trackRate),
                                   channelsText(format.channels));
    if (format.trackRate != format.sessionRate) {
        text += fmt::format(" (analysed at {} Hz)", grouped(format.sessionRate));
    }
    return text;
}

std::string lengthText(double seconds, std::int64_t frames) {
    return fmt::format("{}  ({})", clockTime(seconds), counted(frames, "frame"));
}

}  // namespace

std::string textLine(const std::string& label, const std::string& value) {
    return fmt::format("  {:<9}{}\n", label, value);
}

std::string trackFileText(const base::TrackSource& file, std::int64_t frames) {
    const double seconds = static_cast<double>(frames) / file.format.sessionRate;
    return base::displayName(file.path) + "\n" + textLine("audio", formatText(file)) +
           textLine("length", lengthText(seconds, frames));
}

std::string keyNames(int number, const std::optional<KeyNotation>& notation) {
    const KeyName key(number);
    if (notation) return key.in(*notation);
    return fmt::format("{}, {}, {}, number {}", key.musical(), key.camelot(), key.openKey(),
                       key.number());
}

std::string shortKeyName(int number, const std::optional<KeyNotation>& notation) {
    const KeyName key(number);
    if (notation) return key.in(*notation);
    return fmt::format("{} ({})", key.musical(), key.camelot());
}

std::string keyDetails(const TrackReport& report) {
    const auto& key = report.analysis.key;
    if (!key) return kNoKeyText;
    return keyNames(key->best(), report.keyNotation) + keyDoubts(report);
}

std::string keyDoubts(const TrackReport& report) {
    const auto& key = report.analysis.key;
    if (!key || key->confidence >= kSureKey) return {};
    const std::string text = "; perhaps " + shortKeyName(key->second(), report.keyNotation);
    return key->confidence < kHardlyAKey ? text + "; hardly a clear key" : text;
}

}  // namespace output
