// SPDX-License-Identifier: MIT
#include "doctor/Report.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "base/displayName.h"
#include "cli/ConfigFile.h"
#include "cli/processors.h"
#include "cli/toolVersion.h"
#include "doctor/buildFacts.h"
#include "doctor/catalogueCheck.h"
#include "doctor/libraries.h"
#include "doctor/machine.h"
#include "doctor/selfCheck.h"
#include "doctor/surroundings.h"
#include "io/terminal.h"
#include "media/temporaryFile.h"

namespace app {

namespace {

constexpr double kGigabyte = 1024.0 * 1024.0 * 1024.0;

const char* wordOf(Outcome outcome) {
    if (outcome == Outcome::ok) return "ok";
    return outcome == Outcome::note ? "note" : "failed";
}

std::string valueOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : base::displayName(value);
}

/** Whether the system has this locale's rules for characters. */
bool isInstalled(const char* name) {
    const locale_t locale = newlocale(LC_CTYPE_MASK, name, locale_t{});
    if (locale == locale_t{}) return false;
    freelocale(locale);
    return true;
}

/** The variable that decides over characters, by POSIX. */
std::string localeText() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') continue;
        const char* rest = isInstalled(value) ? "" : "; not installed";
        return fmt::format("{} ({}){}", base::displayName(value), variable, rest);
    }
    return "none";
}

std::string terminalText() {
    if (isatty(STDERR_FILENO) == 0) return "standard error leads to none";
    const std::string kind = valueOf("TERM");
    return fmt::format("{}, {} columns", kind.empty() ? "TERM is not set" : kind,
                       terminalColumns());
}

std::string memoryText() {
    const Memory memory = app::memory();
    return fmt::format("{:.1f} GiB, {:.1f} GiB of it free",
                       static_cast<double>(memory.all) / kGigabyte,
                       static_cast<double>(memory.available) / kGigabyte);
}

std::string libraryText(const Library& library) {
    if (library.running.empty()) return library.built + " (built with)";
    if (library.running == library.built) return library.running;
    return fmt::format("{}, built with {}", library.running, library.built);
}

std::vector<Fact> factsHere(const std::vector<Library>& libraries) {
    const std::string processor = processorName();
    std::vector<Fact> facts = {{"program", "beatatlas " + toolVersion()},
                               {"compiler", compilerText()},
                               {"flags", flagsText()},
                               {"FFmpeg", av_version_info()}};
    for (const Library& library : libraries) facts.push_back({library.name, libraryText(library)});
    facts.push_back({"processor", processor.empty() ? "not named by the system" : processor});
    facts.push_back({"vector form", vectorFormText()});
    facts.push_back({"processors", std::to_string(processors())});
    facts.push_back({"memory", memoryText()});
    facts.push_back({"locale", localeText()});
    facts.push_back({"terminal", terminalText()});
    return facts;
}

std::vector<Check> checksHere(const std::vector<Library>& libraries) {
    std::vector<Check> checks = {checkLibraries(libraries), checkDecoders(usualFormats()),
                                 checkFonts(), checkSettings(usersOwnSettings()),
                                 checkTemporaryFolder(media::temporaryFolder())};
    for (const std::string& path : cataloguesInUse(usersOwnSettings()))
        checks.push_back(checkCatalogue(path));
    for (Check& check : checkOnKnownTrack()) checks.push_back(std::move(check));
    return checks;
}

}  // namespace

Report Report::made() {
    const std::vector<Library> used = libraries();
    return {factsHere(used), checksHere(used)};
}

Report::Report(std::vector<Fact> facts, std::vector<Check> checks)
    : facts_(std::move(facts)), checks_(std::move(checks)) {}

long Report::count(Outcome outcome) const {
    return std::count_if(checks_.begin(), checks_.end(),
                         [&](const Check& check) { return check.outcome == outcome; });
}

bool Report::isWell() const {
    return count(Outcome::failed) == 0;
}

std::string Report::text() const {
    std::string text;
    for (const Fact& fact : facts_) text += fmt::format("{:<13} {}\n", fact.subject, fact.text);
    text += '\n';
    for (const Check& check : checks_)
        text += fmt::format("{:<7} {:<13} {}\n", wordOf(check.outcome), check.subject, check.text);
    return text + fmt::format("\n{} checks: {} ok, {} noted, {} failed\n", checks_.size(),
                              count(Outcome::ok), count(Outcome::note), count(Outcome::failed));
}

std::string Report::json() const {
    nlohmann::ordered_json document = {{"format", "beatatlas.doctor"},
                                       {"version", 1},
                                       {"tool", toolVersion()},
                                       {"well", isWell()},
                                       {"facts", nlohmann::ordered_json::array()},
                                       {"checks", nlohmann::ordered_json::array()}};
    for (const Fact& fact : facts_)
        document["facts"].push_back({{"subject", fact.subject}, {"text", fact.text}});
    for (const Check& check : checks_)
        document["checks"].push_back(
            {{"subject", check.subject}, {"outcome", wordOf(check.outcome)}, {"text", check.text}});
    return document.dump() + "\n";
}

}  // namespace app
