// SPDX-License-Identifier: MIT
// Writes the manual pages and the completions of the shells from the program's own tables of
// options. Run by the build: makeManual PAGES REVISED FOLDER
//   PAGES    folder of the sections that the tables do not have, a file for each page
//   REVISED  the day that pages state, unless SOURCE_DATE_EPOCH names another
//   FOLDER   where the results go
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "manual/ManualPage.h"
#include "manual/completions.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file) throw std::runtime_error(path.string() + " cannot be read");
    return content.str();
}

void write(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) throw std::runtime_error(path.string() + " cannot be written");
}

std::string dateOf(const std::string& revised) {
    const char* epoch = std::getenv("SOURCE_DATE_EPOCH");
    if (epoch == nullptr) return revised;
    const std::time_t seconds = std::stoll(epoch);
    std::tm parts{};
    char date[16] = "";
    if (gmtime_r(&seconds, &parts) == nullptr ||
        std::strftime(date, sizeof date, "%Y-%m-%d", &parts) == 0)
        throw std::runtime_error("SOURCE_DATE_EPOCH is no time");
    return date;
}

void writePage(const manual::ProgramOutline& outline, const manual::CommandOutline& command,
               const fs::path& texts, const std::string& date, const fs::path& folder) {
    const fs::path text = texts / (command.name + ".roff");
    try {
        const manual::ManualPage page(outline, command, contentOf(text), date);
        write(folder / (page.name() + ".1"), page.page());
    } catch (const std::exception& error) {
        throw std::runtime_error(text.string() + ": " + error.what());
    }
}

void makeManual(const fs::path& texts, const std::string& revised, const fs::path& folder) {
    app::CommandLine commandLine;
    const manual::ProgramOutline outline = manual::outlineOf(commandLine);
    const std::string date = dateOf(revised);
    fs::create_directories(folder);
    writePage(outline, outline.program, texts, date, folder);
    for (const manual::CommandOutline& command : outline.commands)
        writePage(outline, command, texts, date, folder);
    write(folder / "beatatlas.bash", manual::bashCompletion(outline));
    write(folder / "_beatatlas", manual::zshCompletion(outline));
    write(folder / "beatatlas.fish", manual::fishCompletion(outline));
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kArguments = 4;
    try {
        if (argc != kArguments) throw std::runtime_error("makeManual PAGES REVISED FOLDER");
        makeManual(argv[1], argv[2], argv[3]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "makeManual: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
