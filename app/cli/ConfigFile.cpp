// SPDX-License-Identifier: MIT
#include "cli/ConfigFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/suggestion.h"
#include "io/userFolder.h"

namespace app {

namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 20;

constexpr const char* kConfig = "--config";
constexpr const char* kNoConfig = "--no-config";

std::string trimmed(std::string_view text) {
    const auto isBlank = [](char letter) {
        return letter == ' ' || letter == '\t' || letter == '\r';
    };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return std::string(text);
}

/** A value without its quotes and the remark behind it; nothing when a quote is missing. */
std::optional<std::string> valueOf(const std::string& text) {
    if (!text.starts_with('"')) return trimmed(text.substr(0, text.find(" #")));
    const std::size_t end = text.find('"', 1);
    if (end == std::string::npos) return std::nullopt;
    const std::string rest = trimmed(text.substr(end + 1));
    if (!rest.empty() && rest.front() != '#') return std::nullopt;
    return text.substr(1, end - 1);
}

bool isSetting(const CLI::Option& option) {
    static const std::set<std::string> ends = {"help", "version", "config", "no-config"};
    return !option.get_lnames().empty() && !ends.contains(option.get_lnames().front());
}

CLI::Option* optionOf(CLI::App& command, const std::string& name) {
    CLI::Option* option = command.get_option_no_throw("--" + name);
    return option != nullptr && isSetting(*option) ? option : nullptr;
}

std::vector<std::string> settingNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        if (isSetting(*option)) names.push_back(option->get_lnames().front());
    return names;
}

/** Whether a word gives the option: "--output", "--output=x", "-o", "-ox". */
bool gives(const std::string& word, const CLI::Option& option) {
    for (const std::string& name : option.get_lnames())
        if (word == "--" + name || word.starts_with("--" + name + "=")) return true;
    for (const std::string& name : option.get_snames())
        if (!word.starts_with("--") && word.starts_with("-" + name)) return true;
    return false;
}

bool isExcluded(const CLI::Option& option, const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    const std::set<CLI::Option*> excluded = option.get_excludes();
    return std::any_of(words.begin(), end, [&](const std::string& word) {
        return std::any_of(excluded.begin(), excluded.end(),
                           [&](const CLI::Option* other) { return gives(word, *other); });
    });
}

std::optional<bool> switchOf(const std::string& value) {
    if (value == "true" || value == "yes" || value == "on") return true;
    if (value == "false" || value == "no" || value == "off") return false;
    return std::nullopt;
}

std::string contentOf(const std::string& path) {
    // A pipe to which nobody writes would be waited for without end. What a shell puts in the place
    // of a file, /dev/null or /dev/fd/63, is meant.
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
        !path.starts_with("/dev/"))
        throw base::UsageError(base::displayName(path) +
                               " is not a regular file: settings are read from no other");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw base::UsageError(base::displayName(path) +
                               " cannot be opened: " + base::systemReason(errno));
    std::string text(kMostBytes + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) throw base::UsageError(base::displayName(path) + " cannot be read");
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMostBytes)
        throw base::UsageError(base::displayName(path) + " is too long for a file of settings");
    return text;
}

}  // namespace

ConfigFile::ConfigFile(std::string path) : path_(std::move(path)) {
    parse(contentOf(path_));
}

void ConfigFile::parse(const std::string& text) {
    std::istringstream lines(text);
    std::string command;
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number)
        parseLine(trimmed(line), number, command);
}

void ConfigFile::parseLine(const std::string& line, int number, std::string& command) {
    if (line.empty() || line.front() == '#' || line.front() == ';') return;
    if (line.front() == '[') {
        const std::string heading = *valueOf(line);
        if (heading.back() != ']') refuse(number, "] is missing");
        command = trimmed(heading.substr(1, heading.size() - 2));
        if (command.empty()) refuse(number, "[] names no command: [export], say");
        headings_.push_back({number, command});
        return;
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string::npos || sign == 0)
        refuse(number, "is neither OPTION = VALUE nor [COMMAND]");
    const auto value = valueOf(trimmed(line.substr(sign + 1)));
    if (!value) refuse(number, "\" is missing");
    settings_.push_back({number, command, trimmed(line.substr(0, sign)), *value});
}

void ConfigFile::requireKnown(const CLI::App& program, const Heading& heading) const {
    std::vector<std::string> commands;
    for (const CLI::App* command : program.get_subcommands({}))
        commands.push_back(command->get_name());
    if (std::find(commands.begin(), commands.end(), heading.command) == commands.end())
        refuse(heading.line, "there is no command " + base::displayName(heading.command) +
                                 suggestion(heading.command, commands));
}

void ConfigFile::requireKnown(const CLI::App& program, const Setting& setting) const {
    std::vector<std::string> names;
    for (const CLI::App* command : program.get_subcommands({})) {
        if (!setting.command.empty() && command->get_name() != setting.command) continue;
        const std::vector<std::string> own = settingNames(*command);
        names.insert(names.end(), own.begin(), own.end());
    }
    if (std::find(names.begin(), names.end(), setting.name) == names.end())
        refuse(setting.line, "there is no option " + base::displayName(setting.name) +
                                 suggestion(setting.name, names));
}

void ConfigFile::applyTo(CLI::App& program, const std::vector<std::string>& words) const {
    for (const Heading& heading : headings_) requireKnown(program, heading);
    for (const Setting& setting : settings_) requireKnown(program, setting);
    CLI::App& command = *program.get_subcommand(words.front());
    for (const Setting& setting : settings_) {
        if (!setting.command.empty() && setting.command != words.front()) continue;
        CLI::Option* option = optionOf(command, setting.name);
        if (option != nullptr && !isExcluded(*option, words)) apply(*option, setting);
    }
}

std::map<std::string, std::string> ConfigFile::valuesOf(const std::string& option) const {
    std::map<std::string, std::string> values;
    for (const Setting& setting : settings_)
        if (setting.name == option) values[setting.command] = setting.value;
    return values;
}

void ConfigFile::apply(CLI::Option& option, const Setting& setting) const {
    std::string value = guarded(setting.value);
    if (option.get_expected_max() == 0) {
        const auto isOn = switchOf(setting.value);
        if (!isOn)
            refuse(setting.line,
                   setting.name + ": takes true or false, not " + base::displayName(setting.value));
        value = *isOn ? "true" : "false";
    }
    try {
        option.add_result(value);
        option.run_callback();
    } catch (const CLI::Error& error) {
        refuse(setting.line, base::displayName(error.what()));
    }
    // The variable keeps the value; for the parser the option has not been given.
    option.clear();
    option.required(false);
}

void ConfigFile::refuse(int line, const std::string& reason) const {
    throw base::UsageError(base::displayName(path_) + ":" + std::to_string(line) + ": " + reason);
}

void declareConfig(CLI::App& arguments) {
    // Read before the command line is parsed, see applyConfig().
    arguments.add_option(kConfig, "read settings from this file instead of the user's own")
        ->option_text("FILE");
    arguments.add_flag_function(
        kNoConfig, [](std::int64_t) {}, "read no file of settings");
}

std::string usersOwnSettings() {
    const std::filesystem::path folder = userFolder("XDG_CONFIG_HOME", ".config");
    const std::string path = (folder / "beatatlas" / "config.ini").string();
    return !folder.empty() && access(path.c_str(), F_OK) == 0 ? path : "";
}

void applyConfig(CLI::App& program, const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    const auto isGiven = [&](const char* word) {
        return std::find(words.begin(), end, word) != end;
    };
    if (isGiven(kNoConfig) || isGiven("--help") || isGiven("-h")) return;
    const std::string assigned = std::string(kConfig) + "=";
    for (auto word = words.begin(); word != end; ++word) {
        if (word->starts_with(assigned))
            return ConfigFile(word->substr(assigned.size())).applyTo(program, words);
        if (*word == kConfig && word + 1 != words.end())
            return ConfigFile(*(word + 1)).applyTo(program, words);
    }
    if (const std::string path = usersOwnSettings(); !path.empty())
        ConfigFile(path).applyTo(program, words);
}

}  // namespace app
