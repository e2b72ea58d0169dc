// SPDX-License-Identifier: MIT
#include "output/textParts.h"

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/KeyName.h"
#include "output/textFormat.h"

namespace output {

namespace {

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
    return fmt::format("{}  ({} frames)", clockTime(seconds), grouped(frames));
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

std::string keyNames(int number) {
    const KeyName key(number);
    return fmt::format("{}, {}, {}, number {}", key.musical(), key.camelot(), key.openKey(),
                       key.number());
}

std::string keyDetails(const std::optional<beatatlas::track::KeyRanking>& key) {
    if (!key) return kNoKeyText;
    const KeyName next(key->keys[1]);
    return fmt::format("{}; next {} ({}), {:.1f} % behind", keyNames(key->keys[0]), next.musical(),
                       next.camelot(), key->runnerUpDistance() * 100.0);
}

}  // namespace output
