// SPDX-License-Identifier: MIT
#include "output/formats/csvText.h"

#include <cmath>

#include <fmt/format.h>

namespace output {

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + "\"";
}

std::string csvLine(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) line += csvField(field) + ",";
    if (!line.empty()) line.pop_back();
    return line + "\n";
}

std::string shortNumber(double number, int places) {
    const double steps = std::pow(10.0, places);
    return fmt::format("{}", std::round(number * steps) / steps);
}

std::string csvSeconds(double seconds) {
    return fmt::format("{:.6f}", seconds);
}

}  // namespace output
