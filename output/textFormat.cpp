// SPDX-License-Identifier: MIT
#include "output/textFormat.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

#include "base/displayName.h"

namespace output {

namespace {

// Thirty thousand years; what a damaged catalogue may hold beyond is shown as this.
constexpr double kLongestSeconds = 1e12;

/** To the nearest, so that 59.996 s are a minute. @param perSecond  units in a second */
std::int64_t roundedUnits(double seconds, int perSecond) {
    return std::llround(std::min(std::max(0.0, seconds), kLongestSeconds) * perSecond);
}

std::string hoursMinutesSeconds(std::int64_t seconds) {
    const std::int64_t minutes = seconds / 60;
    if (minutes < 60) return fmt::format("{}:{:02}", minutes, seconds % 60);
    return fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, seconds % 60);
}

}  // namespace

std::string clockTime(double seconds) {
    const std::int64_t hundredths = roundedUnits(seconds, 100);
    return fmt::format("{}.{:02}", hoursMinutesSeconds(hundredths / 100), hundredths % 100);
}

std::string clockTimeInSeconds(double seconds) {
    return hoursMinutesSeconds(roundedUnits(seconds, 1));
}

std::string grouped(std::int64_t number) {
    if (number < 1000) return fmt::format("{}", number);
    return fmt::format("{},{:03}", grouped(number / 1000), number % 1000);
}

std::string bpmText(double bpm) {
    return fmt::format("{:.2f}", bpm);
}

std::string counted(std::int64_t number, const std::string& noun) {
    return grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string utf8Text(const std::string& text) {
    return base::isUtf8(text) ? text : base::displayName(text);
}

std::string addressPath(const std::string& path) {
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                        "0123456789-._~/";
    std::string address;
    for (const char letter : path) {
        if (kPlain.find(letter) != std::string_view::npos)
            address += letter;
        else
            address += fmt::format("%{:02X}", static_cast<unsigned char>(letter));
    }
    return address;
}

std::string fileAddress(const std::string& path) {
    return "file://" + addressPath(path);
}

}  // namespace output
