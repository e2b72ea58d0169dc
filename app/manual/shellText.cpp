// SPDX-License-Identifier: MIT
#include "manual/shellText.h"

#include <fmt/format.h>

#include "scan/usualLength.h"

namespace manual {

std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text) word += letter == '\'' ? "'\\''" : std::string(1, letter);
    return word + "'";
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    return fmt::format("{}", fmt::join(words, between));
}

std::vector<std::string> endingsOf(Value value) {
    if (value == Value::catalogue) return {"sqlite"};
    if (value == Value::settings) return {"ini"};
    if (value != Value::track && value != Value::tracks) return {};
    std::vector<std::string> endings;
    for (const std::string& ending : app::musicEndings()) endings.push_back(ending.substr(1));
    if (value == Value::tracks) endings.insert(endings.end(), {"m3u", "m3u8", "pls"});
    return endings;
}

}  // namespace manual
